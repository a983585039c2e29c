#include "settings/musicSettings.h"

#include "core/playerState.h"
#include "support/tempDir.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

namespace {

int countLines(const std::string& text) {
    return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

// Every one of the 37 settings, field by field.
void expectSameSettings(const PlayerState& a, const PlayerState& b) {
    EXPECT_EQ(a.directoryPaths, b.directoryPaths);
    EXPECT_EQ(a.volume, b.volume);
    EXPECT_EQ(a.lowVolume, b.lowVolume);
    EXPECT_EQ(a.highVolume, b.highVolume);
    EXPECT_EQ(a.songPlayDurationMin, b.songPlayDurationMin);
    EXPECT_EQ(a.songPlayDurationMax, b.songPlayDurationMax);
    EXPECT_EQ(a.iSongPlayDurationMin, b.iSongPlayDurationMin);
    EXPECT_EQ(a.iSongPlayDurationMax, b.iSongPlayDurationMax);
    EXPECT_EQ(a.FADE_DURATION_MS, b.FADE_DURATION_MS);
    EXPECT_EQ(a.rawMIDI, b.rawMIDI);
    EXPECT_EQ(a.rawMP3, b.rawMP3);
    EXPECT_EQ(a.rawTracker, b.rawTracker);
    EXPECT_EQ(a.rawFav, b.rawFav);
    EXPECT_EQ(a.rawRadio, b.rawRadio);
    EXPECT_EQ(a.songsBeforeSoundfontChange, b.songsBeforeSoundfontChange);
    EXPECT_EQ(a.historyDepth, b.historyDepth);
    EXPECT_EQ(a.textR, b.textR);
    EXPECT_EQ(a.textG, b.textG);
    EXPECT_EQ(a.textB, b.textB);
    EXPECT_EQ(a.bkGrR, b.bkGrR);
    EXPECT_EQ(a.bkGrG, b.bkGrG);
    EXPECT_EQ(a.bkGrB, b.bkGrB);
    EXPECT_EQ(a.songR, b.songR);
    EXPECT_EQ(a.songG, b.songG);
    EXPECT_EQ(a.songB, b.songB);
    EXPECT_EQ(a.windowAlpha, b.windowAlpha);
    EXPECT_EQ(a.textureAlpha, b.textureAlpha);
    EXPECT_EQ(a.bkTextureAlpha, b.bkTextureAlpha);
    EXPECT_EQ(a.currentBkTextureName, b.currentBkTextureName);
    EXPECT_EQ(a.currentLCDTextureName, b.currentLCDTextureName);
    EXPECT_EQ(a.randomColorPlayer, b.randomColorPlayer);
    EXPECT_EQ(a.borderlessAuto, b.borderlessAuto);
    EXPECT_EQ(a.useRumble, b.useRumble);
    EXPECT_EQ(a.useRumbleToggle, b.useRumbleToggle);
    EXPECT_EQ(a.rumbleTime, b.rumbleTime);
    EXPECT_EQ(a.rumbleTimeToggle, b.rumbleTimeToggle);
    EXPECT_EQ(a.versionCheck, b.versionCheck);
}

const char* const defaultFile = R"({
    "FADE_DURATION_MS": 8000,
    "bkGrB": 35,
    "bkGrG": 35,
    "bkGrR": 35,
    "bkTextureAlpha": 35,
    "borderlessAuto": 0,
    "currentBkTextureName": "wood",
    "currentLCDTextureName": "cement",
    "directoryPaths": [],
    "highVolume": 0.800000011920929,
    "historyDepth": 20,
    "iSongPlayDurationMax": 180,
    "iSongPlayDurationMin": 60,
    "lowVolume": 0.10000000149011612,
    "randomColorPlayer": 0,
    "rawFav": 50,
    "rawMIDI": 50,
    "rawMP3": 50,
    "rawRadio": 20,
    "rawTracker": 50,
    "rumbleTime": 500,
    "rumbleTimeToggle": 100,
    "songB": 0,
    "songG": 0,
    "songPlayDurationMax": 110,
    "songPlayDurationMin": 45,
    "songR": 0,
    "songsBeforeSoundfontChange": 1,
    "textB": 255,
    "textG": 255,
    "textR": 255,
    "textureAlpha": 25,
    "useRumble": true,
    "useRumbleToggle": true,
    "versionCheck": true,
    "volumeLevel": 0.5,
    "windowAlpha": 255
})";

} // namespace

TEST(MusicSettings, DefaultsAreWrittenByteForByte) {
    TempDir dir;
    PlayerState st;
    st.dataDirectory = dir.str();
    saveMusicSettings(st);
    EXPECT_EQ(TempDir::read(dir.path() / "MusicSettings.json"), defaultFile);
}

TEST(MusicSettings, EverySettingChangedSurvivesASaveAndALoad) {
    TempDir dir;
    PlayerState changed;
    changed.dataDirectory = dir.str();
    changed.directoryPaths = {"/music/Ünïcode", "/music/with \"quotes\"", "/"};
    changed.volume = 0.37f;
    changed.lowVolume = 0.0f;
    changed.highVolume = 1.0f;
    changed.songPlayDurationMin = 1;
    changed.songPlayDurationMax = 1000;
    changed.iSongPlayDurationMin = 2;
    changed.iSongPlayDurationMax = 600;
    changed.FADE_DURATION_MS = 20000;
    changed.rawMIDI = 0;
    changed.rawMP3 = 100;
    changed.rawTracker = 7;
    changed.rawFav = 8;
    changed.rawRadio = 9;
    changed.songsBeforeSoundfontChange = 20;
    changed.historyDepth = -1;
    changed.textR = 1;
    changed.textG = 2;
    changed.textB = 3;
    changed.bkGrR = 4;
    changed.bkGrG = 5;
    changed.bkGrB = 6;
    changed.songR = 10;
    changed.songG = 11;
    changed.songB = 12;
    changed.windowAlpha = 0;
    changed.textureAlpha = 13;
    changed.bkTextureAlpha = 14;
    changed.currentBkTextureName = "Leather";
    changed.currentLCDTextureName = "LCD";
    changed.randomColorPlayer = 1;
    changed.borderlessAuto = 1;
    changed.useRumble = false;
    changed.useRumbleToggle = false;
    changed.rumbleTime = 1234;
    changed.rumbleTimeToggle = 0;
    changed.versionCheck = false;
    saveMusicSettings(changed);

    PlayerState loaded;
    EXPECT_TRUE(loadMusicSettings(loaded, dir.str() + "/MusicSettings.json"));
    expectSameSettings(loaded, changed);
}

struct IntegerCase {
    const char* text;
    int expected;
};

class MusicSettingsInteger : public testing::TestWithParam<IntegerCase> {};

TEST_P(MusicSettingsInteger, AnyNumberIsCutAndABooleanCountsAsOneOrZero) {
    TempDir dir;
    std::string value = GetParam().text;
    auto file = dir.write("MusicSettings.json",
                          "{\"rawMIDI\": " + value + ", \"historyDepth\": " + value + "}");
    PlayerState st;
    CaptureStderr();
    EXPECT_TRUE(loadMusicSettings(st, file.string()));
    EXPECT_EQ(GetCapturedStderr(), "");
    EXPECT_EQ(st.rawMIDI, GetParam().expected);
    EXPECT_EQ(st.historyDepth, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Values, MusicSettingsInteger,
    testing::Values(IntegerCase{"12.9", 12}, IntegerCase{"55.7", 55}, IntegerCase{"-1.5", -1},
                    IntegerCase{"-1", -1}, IntegerCase{"true", 1}, IntegerCase{"false", 0},
                    IntegerCase{"2147483647", std::numeric_limits<int>::max()},
                    IntegerCase{"-2147483648", std::numeric_limits<int>::min()},
                    IntegerCase{"7e2", 700}));

struct DamagedCase {
    const char* name;
    std::string bytes;
    int rawMIDI; // what a readable key gave, or its default
};

class MusicSettingsDamaged : public testing::TestWithParam<DamagedCase> {};

TEST_P(MusicSettingsDamaged, ReadableKeysAreTakenTheRestKeepDefaultsWithOneLine) {
    TempDir dir;
    auto file = dir.write("MusicSettings.json", GetParam().bytes);
    PlayerState st;
    st.dataDirectory = dir.str();
    CaptureStderr();
    EXPECT_TRUE(loadMusicSettings(st, file.string()));
    std::string errors = GetCapturedStderr();
    EXPECT_EQ(countLines(errors), 1) << errors;
    EXPECT_NE(errors.find(file.string()), std::string::npos) << errors;
    EXPECT_EQ(TempDir::copiesAside(dir.path()), 1);

    PlayerState expected;
    expected.rawMIDI = GetParam().rawMIDI;
    expectSameSettings(st, expected);

    // The state stays usable: it saves and reads back without a word.
    CaptureStderr();
    saveMusicSettings(st);
    PlayerState reread;
    EXPECT_TRUE(loadMusicSettings(reread, file.string()));
    EXPECT_EQ(GetCapturedStderr(), "");
    expectSameSettings(reread, expected);
}

INSTANTIATE_TEST_SUITE_P(
    Files, MusicSettingsDamaged,
    testing::Values(DamagedCase{"NotJson", R"({"rawMIDI": 77, "rawMP3": )", 50},
                    DamagedCase{"RootIsAnArray", R"([{"rawMIDI": 77}])", 50},
                    DamagedCase{"EmptyFile", "", 50},
                    DamagedCase{"RandomBytes", std::string("\x89\x00\xff\x13garbage\xfe", 13), 50},
                    DamagedCase{
                        "KeysOfTheWrongType",
                        R"({"rawMIDI": 77, "rawMP3": "60", "useRumble": 0, "volumeLevel": "loud",
                        "directoryPaths": ["/a", 3], "currentBkTextureName": 5,
                        "randomColorPlayer": null, "versionCheck": "false"})",
                        77},
                    DamagedCase{"HugeNumbers",
                                R"({"rawMIDI": 77, "rawFav": 1e300, "textR": 99999999999999999999,
                        "bkGrR": -3000000000, "lowVolume": 1e39, "songR": 2147483648})",
                                77}),
    [](const testing::TestParamInfo<DamagedCase>& info) { return info.param.name; });

TEST(MusicSettings, AMissingFileReturnsFalseAndChangesNothing) {
    TempDir dir;
    std::string missing = dir.str() + "/MusicSettings.json";
    PlayerState st;
    st.rawMIDI = 3;
    st.directoryPaths = {"/kept"};
    PlayerState before;
    before.rawMIDI = 3;
    before.directoryPaths = {"/kept"};
    CaptureStderr();
    EXPECT_FALSE(loadMusicSettings(st, missing));
    EXPECT_EQ(GetCapturedStderr(), "Failed to open file for reading: " + missing + "\n");
    expectSameSettings(st, before);
}

TEST(MusicSettings, ANullFileIsEmptyAndKeepsEverything) {
    TempDir dir;
    auto file = dir.write("MusicSettings.json", "null");
    PlayerState st;
    CaptureStderr();
    EXPECT_TRUE(loadMusicSettings(st, file.string()));
    EXPECT_EQ(GetCapturedStderr(), "");
    expectSameSettings(st, PlayerState{});
}

TEST(MusicSettings, FilePathsReplaceTheWholeListAndUnknownKeysAreDroppedOnSave) {
    TempDir dir;
    auto file = dir.write("MusicSettings.json",
                          R"({"directoryPaths": ["/new"], "someOldKey": 1, "rawMIDI": 60})");
    PlayerState st;
    st.dataDirectory = dir.str();
    st.directoryPaths = {"/old/a", "/old/b"};
    EXPECT_TRUE(loadMusicSettings(st, file.string()));
    EXPECT_EQ(st.directoryPaths, std::vector<std::string>{"/new"});
    EXPECT_EQ(st.rawMIDI, 60);
    saveMusicSettings(st);
    EXPECT_EQ(TempDir::read(file).find("someOldKey"), std::string::npos);
}

TEST(MusicSettings, TextThatIsNotUtf8StillGetsTheFileWritten) {
    TempDir dir;
    PlayerState st;
    st.dataDirectory = dir.str();
    st.directoryPaths = {"/music/caf\xe9", "/music/plain"};
    st.currentBkTextureName = "bad\xff";
    st.rawMIDI = 61;
    CaptureStderr();
    saveMusicSettings(st);
    EXPECT_EQ(GetCapturedStderr(), "");
    PlayerState loaded;
    EXPECT_TRUE(loadMusicSettings(loaded, dir.str() + "/MusicSettings.json"));
    EXPECT_EQ(loaded.rawMIDI, 61);
    ASSERT_EQ(loaded.directoryPaths.size(), 2u);
    EXPECT_EQ(loaded.directoryPaths[1], "/music/plain");
}

TEST(MusicSettings, AFolderThatCannotBeWrittenGivesOneLine) {
    TempDir dir;
    PlayerState st;
    st.dataDirectory = dir.str() + "/missing";
    CaptureStderr();
    saveMusicSettings(st);
    EXPECT_EQ(GetCapturedStderr(),
              "Failed to open file for writing: " + st.dataDirectory + "/MusicSettings.json\n");
}
