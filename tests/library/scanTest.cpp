#include "library/scan.h"

#include "core/playerState.h"
#include "support/tempDir.h"

#include <dirent.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

// Each playlist as its name and the paths of its songs below the root, in library order.
using Shape = std::vector<std::pair<std::string, std::vector<std::string>>>;

Shape shapeOf(const std::vector<Playlist>& playlists, const TempDir& root) {
    Shape shape;
    for (const Playlist& playlist : playlists) {
        std::vector<std::string> songs;
        for (const Song& song : playlist.songs)
            songs.push_back(song.songPath.substr(root.str().size() + 1));
        shape.push_back({playlist.albumName, songs});
    }
    return shape;
}

// Root reads any folder whatever its mode bits. Taking the two capabilities that allow it out of
// the effective set makes a chmod 000 folder unreadable for real, and they come back at the end.
class WithoutReadOverride {
  public:
    WithoutReadOverride() {
        if (syscall(SYS_capget, &header_, saved_) != 0)
            return;
        __user_cap_data_struct reduced[2] = {saved_[0], saved_[1]};
        reduced[0].effective &= ~((1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH));
        active_ = syscall(SYS_capset, &header_, reduced) == 0;
    }
    ~WithoutReadOverride() {
        if (active_)
            syscall(SYS_capset, &header_, saved_);
    }
    WithoutReadOverride(const WithoutReadOverride&) = delete;
    WithoutReadOverride& operator=(const WithoutReadOverride&) = delete;

  private:
    __user_cap_header_struct header_{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct saved_[2]{};
    bool active_ = false;
};

bool canOpen(const std::filesystem::path& folder) {
    DIR* opened = ::opendir(folder.c_str());
    if (opened)
        ::closedir(opened);
    return opened != nullptr;
}

} // namespace

TEST(ScanSongs, ExtensionsOfAnyCaseAreSongsAndOtherFilesAreNot) {
    TempDir root;
    for (const char* name :
         {"A.MID", "b.Mp3", "c.FLAC", "d.mp4", "e.wav", ".mid", "f.mid.txt", "g", "h.Xm", "i.midi"})
        root.write(std::string("album/") + name);
    PlayerState st;
    std::vector<Playlist> playlists = scanRoot(st, root.str());
    ASSERT_EQ(playlists.size(), 1u);
    std::vector<std::pair<std::string, MusicType>> songs;
    for (const Song& song : playlists[0].songs)
        songs.push_back({song.songPath.substr(root.str().size()), song.musicType});
    EXPECT_EQ(songs, (std::vector<std::pair<std::string, MusicType>>{{"/album/A.MID", 0},
                                                                     {"/album/b.Mp3", 1},
                                                                     {"/album/c.FLAC", 1},
                                                                     {"/album/h.Xm", 2},
                                                                     {"/album/i.midi", 0}}));
    EXPECT_EQ(playlists[0].songCount, 5);
    const Song& first = playlists[0].songs[0];
    EXPECT_EQ(first.isFavorite + first.playCount + first.favoriteCount, 0);
}

TEST(ScanPlaylists, OnlyFirstLevelFoldersWithSongsBecomePlaylists) {
    TempDir root;
    root.write("loose.mid");
    root.write("notes/readme.txt");
    root.mkdir("empty");
    root.write("Album/sub/a.mid");
    root.write("Album/sub/deeper/b.mod");
    PlayerState st;
    CaptureStderr();
    std::vector<Playlist> playlists = scanRoot(st, root.str());
    EXPECT_EQ(GetCapturedStderr(), "");
    EXPECT_EQ(shapeOf(playlists, root),
              (Shape{{"Album", {"Album/sub/a.mid", "Album/sub/deeper/b.mod"}}}));
    EXPECT_EQ(playlists[0].songs[0].musicType, musicTypeMidi);
    EXPECT_EQ(playlists[0].songs[1].musicType, musicTypeTracker);
}

TEST(ScanPlaylists, ARootHoldingOnlyFilesGivesNoPlaylist) {
    TempDir root;
    root.write("a.mid");
    root.write("b.mp3");
    PlayerState st;
    EXPECT_TRUE(scanRoot(st, root.str()).empty());
    EXPECT_EQ(st.scanSongCount, 0);
}

TEST(ScanPlaylists, ARootPathEndingInASlashGivesTheSamePaths) {
    TempDir root;
    root.write("Album/a.mid");
    PlayerState st;
    std::vector<Playlist> playlists = scanRoot(st, root.str() + "/");
    ASSERT_EQ(playlists.size(), 1u);
    EXPECT_EQ(playlists[0].songs[0].songPath, root.str() + "/Album/a.mid");
}

TEST(ScanPlaylists, CountersGrowWithEveryScan) {
    TempDir root;
    root.write("One/a.mid");
    root.write("One/b.mid");
    root.write("Two/c.it");
    root.write("Three/notes.txt");
    PlayerState st;
    scanRoot(st, root.str());
    scanRoot(st, root.str());
    EXPECT_EQ(st.scanSongCount, 6);
    EXPECT_EQ(st.scanPlaylistCount, 4);
}

TEST(ScanOrder, FoldersAndFilesAreSortedCaseInsensitivelyAtEveryLevel) {
    TempDir root;
    for (const char* folder : {"gamma", "Beta", "alpha", "Delta"})
        root.write(std::string(folder) + "/song.mid");
    // A sub-folder's songs come where the sub-folder sorts among the files; of two names that
    // differ only in case, the capital comes first.
    for (const char* file : {"C.mid", "b.mid", "a_sub/z.mid", "a_sub/Y.mid", "A.mid", "a.mid"})
        root.write(std::string("Delta/") + file);
    PlayerState st;
    Shape shape = shapeOf(scanRoot(st, root.str()), root);
    ASSERT_EQ(shape.size(), 4u);
    EXPECT_EQ(shape[0].first, "alpha");
    EXPECT_EQ(shape[1].first, "Beta");
    EXPECT_EQ(shape[3].first, "gamma");
    EXPECT_EQ(shape[2], (Shape::value_type{"Delta",
                                           {"Delta/A.mid", "Delta/a.mid", "Delta/a_sub/Y.mid",
                                            "Delta/a_sub/z.mid", "Delta/b.mid", "Delta/C.mid",
                                            "Delta/song.mid"}}));
}

TEST(ScanLinks, AFolderLinkedIntoTheRootIsAPlaylistButLinksBelowAreNotFollowed) {
    TempDir elsewhere;
    elsewhere.write("Linked Album/a.mid");
    elsewhere.write("Linked Album/inner/b.mid");
    TempDir root;
    root.write("Album/c.mid");
    root.write("Album/d.mp3");
    std::filesystem::create_directory_symlink(elsewhere.path() / "Linked Album",
                                              root.path() / "Linked");
    // A link back up the tree would loop if followed; one to another album would repeat it.
    std::filesystem::create_directory_symlink(root.path(), root.path() / "Album/loop");
    std::filesystem::create_directory_symlink(elsewhere.path() / "Linked Album",
                                              root.path() / "Album/other");
    std::filesystem::create_symlink(root.path() / "Album/d.mp3", root.path() / "Album/e.mp3");
    std::filesystem::create_symlink(root.path() / "gone.mid", root.path() / "Album/f.mid");
    std::filesystem::create_symlink(root.path() / "Album/c.mid", root.path() / "top.mid");
    PlayerState st;
    EXPECT_EQ(shapeOf(scanRoot(st, root.str()), root),
              (Shape{{"Album", {"Album/c.mid", "Album/d.mp3", "Album/e.mp3"}},
                     {"Linked", {"Linked/a.mid", "Linked/inner/b.mid"}}}));
}

TEST(ScanErrors, AMissingRootGivesItsMessageAndNoPlaylists) {
    TempDir dir;
    dir.write("file.mid");
    for (std::string root : {dir.str() + "/missing", dir.str() + "/file.mid", std::string()}) {
        PlayerState st;
        CaptureStderr();
        EXPECT_TRUE(scanRoot(st, root).empty());
        EXPECT_EQ(GetCapturedStderr(),
                  "Directory does not exist or is not a directory: " + root + "\n");
    }
}

TEST(ScanErrors, AnUnreadableSubFolderNeitherEndsTheScanNorLosesSongs) {
    TempDir root;
    root.write("Album/a.mid");
    root.write("Album/locked/b.mid");
    root.write("Album/z.mid");
    root.write("Other/c.mid");
    std::filesystem::path locked = root.path() / "Album/locked";
    ::chmod(locked.c_str(), 0);
    WithoutReadOverride asPlainUser;
    if (canOpen(locked))
        GTEST_SKIP() << "this process reads a folder whatever its mode";

    PlayerState st;
    CaptureStderr();
    std::vector<Playlist> playlists = scanRoot(st, root.str());
    EXPECT_EQ(GetCapturedStderr(),
              "Failed to process file: " + locked.string() + ": Permission denied\n");
    EXPECT_EQ(shapeOf(playlists, root),
              (Shape{{"Album", {"Album/a.mid", "Album/z.mid"}}, {"Other", {"Other/c.mid"}}}));
    EXPECT_EQ(st.scanSongCount, 3);
}

TEST(ScanDefault, TheDefaultFolderReplacesTheLibraryWithoutBecomingARoot) {
    TempDir dir;
    dir.write("Music/Album/a.mid");
    PlayerState st;
    st.libraryCachePath = (dir.path() / "cache.json").string();
    st.playlists.resize(3);
    st.scanSongCount = 40;
    st.scanPlaylistCount = 3;
    std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(dir.path());
    EXPECT_EQ(defaultMusicFolder(), std::filesystem::current_path().string() + "/Music");
    scanDefaultFolder(st);
    std::filesystem::current_path(before);
    ASSERT_EQ(st.playlists.size(), 1u);
    EXPECT_EQ(st.playlists[0].albumName, "Album");
    EXPECT_EQ(st.scanSongCount, 1);
    EXPECT_EQ(st.scanPlaylistCount, 1);
    EXPECT_TRUE(st.directoryPaths.empty());
}
