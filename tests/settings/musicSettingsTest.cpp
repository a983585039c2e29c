#include "settings/musicSettings.h"

#include "core/playerState.h"
#include "support/tempDir.h"

#include <gtest/gtest.h>
#include <limits>

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

namespace {

// A second save of what the first wrote gives the same bytes: every setting is read back as it
// was written, the float volumes too. Each key's name and type, and the damaged forms of the file,
// are tested in util/jsonFileTest.cpp, from a stored file of settings that are all changed.
TEST(MusicSettings, ASecondSaveOfTheDefaultsWritesTheSameBytes) {
    TempDir dir;
    PlayerState st;
    st.dataDirectory = dir.str();
    saveMusicSettings(st);
    const std::string first = TempDir::read(dir.path() / "MusicSettings.json");
    EXPECT_TRUE(first.starts_with("{\n    \"FADE_DURATION_MS\": 8000,\n")) << first;
    PlayerState loaded;
    loaded.dataDirectory = dir.str();
    EXPECT_TRUE(loadMusicSettings(loaded, dir.str() + "/MusicSettings.json"));
    saveMusicSettings(loaded);
    EXPECT_EQ(TempDir::read(dir.path() / "MusicSettings.json"), first);

    // A file of the single word null is empty: no line, nothing changed.
    dir.write("MusicSettings.json", "null");
    PlayerState fromNull;
    fromNull.dataDirectory = dir.str();
    CaptureStderr();
    EXPECT_TRUE(loadMusicSettings(fromNull, dir.str() + "/MusicSettings.json"));
    EXPECT_EQ(GetCapturedStderr(), "");
    saveMusicSettings(fromNull);
    EXPECT_EQ(TempDir::read(dir.path() / "MusicSettings.json"), first);
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

TEST(MusicSettings, AMissingFileOrFolderGivesOneLineAndChangesNothing) {
    TempDir dir;
    const std::string missing = dir.str() + "/missing/MusicSettings.json";
    PlayerState st;
    st.dataDirectory = dir.str() + "/missing";
    st.rawMIDI = 3;
    st.directoryPaths = {"/kept"};
    CaptureStderr();
    EXPECT_FALSE(loadMusicSettings(st, missing));
    EXPECT_EQ(GetCapturedStderr(), "Failed to open file for reading: " + missing + "\n");
    EXPECT_EQ(st.rawMIDI, 3);
    EXPECT_EQ(st.directoryPaths, std::vector<std::string>{"/kept"});
    CaptureStderr();
    saveMusicSettings(st);
    EXPECT_EQ(GetCapturedStderr(), "Failed to open file for writing: " + missing + "\n");
}

} // namespace
