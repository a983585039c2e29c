#include "settings/musicSettings.h"

#include "core/playerState.h"
#include "support/output.h"
#include "support/tempDir.h"

#include <gtest/gtest.h>
#include <limits>
#include <tuple>

namespace {

// A settings folder and its file.
struct SettingsFolder {
    TempDir dir;
    std::string file = dir.str() + "/MusicSettings.json";
    std::string text() const { return TempDir::read(file); }
    std::string save(PlayerState& st) const {
        st.dataDirectory = dir.str();
        return errorsOf([&] { saveMusicSettings(st); });
    }
};

// A second save of what the first wrote gives the same bytes: every setting is read back as it
// was written, the float volumes too. Each key's name and type, and the damaged forms of the file,
// are tested in util/jsonFileTest.cpp, from a stored file of settings that are all changed.
TEST(MusicSettings, ASecondSaveOfTheDefaultsWritesTheSameBytes) {
    SettingsFolder folder;
    PlayerState st;
    folder.save(st);
    const std::string first = folder.text();
    EXPECT_TRUE(first.starts_with("{\n    \"FADE_DURATION_MS\": 8000,\n")) << first;
    PlayerState loaded;
    EXPECT_TRUE(loadMusicSettings(loaded, folder.file));
    folder.save(loaded);
    EXPECT_EQ(folder.text(), first);

    // A file of the single word null is empty: no line, nothing changed.
    folder.dir.write("MusicSettings.json", "null");
    PlayerState fromNull;
    EXPECT_EQ(errorsOf([&] { EXPECT_TRUE(loadMusicSettings(fromNull, folder.file)); }), "");
    folder.save(fromNull);
    EXPECT_EQ(folder.text(), first);
}

// Every integer setting goes through the same reader, so one key stands for each form.
TEST(MusicSettings, NumbersAreCutBooleansCountAsOneOrZeroPathsReplaceTheListUnknownKeysGo) {
    SettingsFolder folder;
    folder.dir.write("MusicSettings.json",
                     R"({"rawMIDI": 12.9, "rawMP3": 55.7, "historyDepth": -1.5, "rawTracker": -1,
                         "rawFav": true, "rawRadio": false, "songR": 7e2, "textR": 2147483647,
                         "textG": -2147483648, "directoryPaths": ["/new"], "someOldKey": 1})");
    PlayerState st;
    st.directoryPaths = {"/old/a", "/old/b"};
    EXPECT_EQ(errorsOf([&] { EXPECT_TRUE(loadMusicSettings(st, folder.file)); }), "");
    constexpr int most = std::numeric_limits<int>::max(), least = std::numeric_limits<int>::min();
    EXPECT_EQ(std::tie(st.rawMIDI, st.rawMP3, st.historyDepth, st.rawTracker, st.rawFav,
                       st.rawRadio, st.songR, st.textR, st.textG),
              std::tuple(12, 55, -1, -1, 1, 0, 700, most, least));
    EXPECT_EQ(st.directoryPaths, std::vector<std::string>{"/new"});
    folder.save(st);
    EXPECT_EQ(folder.text().find("someOldKey"), std::string::npos);
}

TEST(MusicSettings, TextThatIsNotUtf8StillGetsTheFileWritten) {
    SettingsFolder folder;
    PlayerState st;
    st.directoryPaths = {"/music/caf\xe9", "/music/plain"};
    st.currentBkTextureName = "bad\xff";
    EXPECT_EQ(folder.save(st), "");
    PlayerState loaded;
    EXPECT_TRUE(loadMusicSettings(loaded, folder.file));
    EXPECT_EQ(loaded.directoryPaths,
              (std::vector<std::string>{"/music/caf\xef\xbf\xbd", "/music/plain"}));
}

TEST(MusicSettings, AMissingFileOrFolderGivesOneLineAndChangesNothing) {
    TempDir dir;
    const std::string missing = dir.str() + "/missing/MusicSettings.json";
    PlayerState st;
    st.dataDirectory = dir.str() + "/missing";
    st.rawMIDI = 3;
    st.directoryPaths = {"/kept"};
    EXPECT_EQ(errorsOf([&] { EXPECT_FALSE(loadMusicSettings(st, missing)); }),
              "Failed to open file for reading: " + missing + "\n");
    EXPECT_EQ(std::tie(st.rawMIDI, st.directoryPaths),
              std::tuple(3, std::vector<std::string>{"/kept"}));
    EXPECT_EQ(errorsOf([&] { saveMusicSettings(st); }),
              "Failed to open file for writing: " + missing + "\n");
}

} // namespace
