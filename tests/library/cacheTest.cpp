#include "library/cache.h"

#include "core/libraryEdits.h"
#include "core/playerState.h"
#include "support/output.h"
#include "support/tempDir.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <tuple>

namespace {

struct CacheFolder {
    TempDir dir;
    PlayerState st;
    CacheFolder() {
        st.dataDirectory = dir.str();
        st.libraryCachePath = (dir.path() / "musicLibraryCache.json").string();
    }
    std::string text() const { return TempDir::read(st.libraryCachePath); }
};

// The exact and the damaged forms of the file are tested in util/jsonFileTest.cpp.
TEST(LibraryCache, LeavesOutOnlyPathsThatAreNotUtf8AndPlaylistsLeftWithoutSongs) {
    CacheFolder folder;
    const std::string broken = "/music/Mix/caf\xe9.mp3"; // Latin-1, not UTF-8
    folder.st.playlists = {
        Playlist{"Mix", {Song{"/music/Mix/a.mp3", 0, 1, 0, 1}, Song{broken, 1, 9, 2, 1}}, 2},
        Playlist{"Only_broken", {Song{broken, 0, 0, 0, 1}}, 1},
        Playlist{"Album \xff name", {Song{"/music/x.mid", 0, 0, 0, 0}}, 1}};
    const std::string line =
        "Not saved in the library cache, its path is not UTF-8: " + broken + "\n";
    EXPECT_EQ(errorsOf([&] { saveLibraryCache(folder.st); }), line + line);
    std::vector<Playlist> back = loadLibraryCache(folder.st);
    ASSERT_EQ(back.size(), 3u);
    // A playlist without songs does not stop the reader, nor a name that is not UTF-8 the writer.
    EXPECT_EQ(std::tuple(back[0].songs.size(), back[0].songCount, back[1].songs.size(),
                         back[2].albumName, back[2].songs.size()),
              std::tuple(1u, 1, 0u, "Album \xef\xbf\xbd name", 1u));
}

TEST(LibraryCache, AMissingFileIsAnEmptyLibraryWithoutAWordAndASaveWritesTheSettingsUnlessHeld) {
    CacheFolder folder;
    EXPECT_EQ(errorsOf([&] { EXPECT_TRUE(loadLibraryCache(folder.st).empty()); }), "");
    const std::filesystem::path settings = folder.dir.path() / "MusicSettings.json";
    folder.st.settingsSaveHeld = true;
    saveLibraryCache(folder.st);
    EXPECT_EQ(folder.text(), "null");
    EXPECT_FALSE(std::filesystem::exists(settings));
    folder.st.settingsSaveHeld = false;
    saveLibraryCache(folder.st);
    EXPECT_TRUE(std::filesystem::exists(settings));
}

TEST(LibraryCache, ASaveThatCannotBeWrittenKeepsTheOldFileAndStillSavesTheSettings) {
    CacheFolder folder;
    folder.st.libraryCachePath = folder.dir.mkdir("taken.json").string();
    folder.st.playlists = {Playlist{"A", {Song{"/m/a.mp3", 0, 0, 0, 1}}, 1}};
    EXPECT_EQ(errorsOf([&] { saveLibraryCache(folder.st); }),
              "Failed to open " + folder.st.libraryCachePath + " for writing.\n");
    EXPECT_TRUE(std::filesystem::is_directory(folder.st.libraryCachePath));
    EXPECT_TRUE(std::filesystem::exists(folder.dir.path() / "MusicSettings.json"));
}

} // namespace
