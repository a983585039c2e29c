#include "settings/musicSettings.h"

#include "core/playerState.h"
#include "support/output.h"
#include "support/tempDir.h"

#include <gtest/gtest.h>
#include <limits>

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

TEST(MusicSettings, AnyNumberIsCutAndABooleanCountsAsOneOrZero) {
    const std::pair<const char*, int> cases[] = {{"12.9", 12},
                                                 {"55.7", 55},
                                                 {"-1.5", -1},
                                                 {"-1", -1},
                                                 {"true", 1},
                                                 {"false", 0},
                                                 {"7e2", 700},
                                                 {"2147483647", std::numeric_limits<int>::max()},
                                                 {"-2147483648", std::numeric_limits<int>::min()}};
    for (const auto& [value, expected] : cases) {
        SettingsFolder folder;
        folder.dir.write("MusicSettings.json", std::string("{\"rawMIDI\": ") + value +
                                                   ", \"historyDepth\": " + value + "}");
        PlayerState st;
        EXPECT_EQ(errorsOf([&] { EXPECT_TRUE(loadMusicSettings(st, folder.file)); }), "");
        EXPECT_EQ(st.rawMIDI, expected) << value;
        EXPECT_EQ(st.historyDepth, expected) << value;
    }
}

TEST(MusicSettings, FilePathsReplaceTheWholeListAndUnknownKeysAreDroppedOnSave) {
    SettingsFolder folder;
    folder.dir.write("MusicSettings.json",
                     R"({"directoryPaths": ["/new"], "someOldKey": 1, "rawMIDI": 60})");
    PlayerState st;
    st.directoryPaths = {"/old/a", "/old/b"};
    EXPECT_TRUE(loadMusicSettings(st, folder.file));
    EXPECT_EQ(st.directoryPaths, std::vector<std::string>{"/new"});
    EXPECT_EQ(st.rawMIDI, 60);
    folder.save(st);
    EXPECT_EQ(folder.text().find("someOldKey"), std::string::npos);
}

TEST(MusicSettings, TextThatIsNotUtf8StillGetsTheFileWritten) {
    SettingsFolder folder;
    PlayerState st;
    st.directoryPaths = {"/music/caf\xe9", "/music/plain"};
    st.currentBkTextureName = "bad\xff";
    st.rawMIDI = 61;
    EXPECT_EQ(folder.save(st), "");
    PlayerState loaded;
    EXPECT_TRUE(loadMusicSettings(loaded, folder.file));
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
    EXPECT_EQ(errorsOf([&] { EXPECT_FALSE(loadMusicSettings(st, missing)); }),
              "Failed to open file for reading: " + missing + "\n");
    EXPECT_EQ(st.rawMIDI, 3);
    EXPECT_EQ(st.directoryPaths, std::vector<std::string>{"/kept"});
    EXPECT_EQ(errorsOf([&] { saveMusicSettings(st); }),
              "Failed to open file for writing: " + missing + "\n");
}

} // namespace
