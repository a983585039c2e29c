#include "library/scan.h"

#include "core/libraryEdits.h"
#include "core/playerState.h"
#include "support/currentDirectory.h"
#include "support/output.h"
#include "support/tempDir.h"

#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <tuple>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

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

} // namespace

// Files directly in the root, folders without songs and files of other types are passed over;
// extensions are matched in any case. Folders and files sort without regard to case at every
// level, a sub-folder's songs come where the sub-folder sorts among the files, and of two names
// that differ only in case the capital comes first.
TEST(ScanPlaylists, FirstLevelFoldersWithSongsBecomePlaylistsOfEverySongBelowInNameOrder) {
    TempDir root;
    for (const char* name :
         {"loose.mid",         "notes/readme.txt", "Album/sub/a.mid", "Album/sub/deeper/b.mod",
          "Album/C.MID",       "Album/d.Mp3",      "Album/e.FLAC",    "Album/f.mp4",
          "Album/g.wav",       "Album/.mid",       "Album/h.mid.txt", "Album/i",
          "Album/j.Xm",        "Album/k.midi",     "gamma/song.mid",  "Beta/song.mid",
          "alpha/song.mid",    "Delta/C.mid",      "Delta/b.mid",     "Delta/a_sub/z.mid",
          "Delta/a_sub/Y.mid", "Delta/A.mid",      "Delta/a.mid"})
        root.write(name);
    root.mkdir("empty");
    PlayerState st;
    std::vector<Playlist> playlists;
    // A root ending in a slash gives the same paths.
    EXPECT_EQ(errorsOf([&] { playlists = scanRoot(st, root.str() + "/"); }), "");
    EXPECT_EQ(shapeOf(playlists, root),
              (Shape{{"Album",
                      {"Album/C.MID", "Album/d.Mp3", "Album/e.FLAC", "Album/j.Xm", "Album/k.midi",
                       "Album/sub/a.mid", "Album/sub/deeper/b.mod"}},
                     {"alpha", {"alpha/song.mid"}},
                     {"Beta", {"Beta/song.mid"}},
                     {"Delta",
                      {"Delta/A.mid", "Delta/a.mid", "Delta/a_sub/Y.mid", "Delta/a_sub/z.mid",
                       "Delta/b.mid", "Delta/C.mid"}},
                     {"gamma", {"gamma/song.mid"}}}));
    std::vector<int> types;
    for (const Song& song : playlists[0].songs)
        types.push_back(song.musicType);
    EXPECT_EQ(types, (std::vector<int>{musicTypeMidi, musicTypeMp3, musicTypeMp3, musicTypeTracker,
                                       musicTypeMidi, musicTypeMidi, musicTypeTracker}));
    EXPECT_EQ(std::tie(playlists[0].songCount, st.scanSongCount), std::tuple(7, 16));
}

TEST(ScanLinks, AFolderLinkedIntoTheRootIsAPlaylistButLinksBelowAreNotFollowed) {
    TempDir elsewhere;
    elsewhere.write("Linked Album/a.mid");
    elsewhere.write("Linked Album/inner/b.mid");
    TempDir root;
    root.write("Album/c.mid");
    root.write("Album/d.mp3");
    fs::create_directory_symlink(elsewhere.path() / "Linked Album", root.path() / "Linked");
    // A link back up the tree would loop if followed; one to another album would repeat it.
    fs::create_directory_symlink(root.path(), root.path() / "Album/loop");
    fs::create_directory_symlink(elsewhere.path() / "Linked Album", root.path() / "Album/other");
    fs::create_symlink(root.path() / "Album/d.mp3", root.path() / "Album/e.mp3");
    fs::create_symlink(root.path() / "gone.mid", root.path() / "Album/f.mid");
    fs::create_symlink(root.path() / "Album/c.mid", root.path() / "top.mid");
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
        EXPECT_EQ(errorsOf([&] { EXPECT_TRUE(scanRoot(st, root).empty()); }),
                  "Directory does not exist or is not a directory: " + root + "\n");
    }
}

TEST(ScanErrors, AnUnreadableSubFolderNeitherEndsTheScanNorLosesSongs) {
    TempDir root;
    root.write("Album/a.mid");
    root.write("Album/locked/b.mid");
    root.write("Album/z.mid");
    root.write("Other/c.mid");
    fs::path locked = root.path() / "Album/locked";
    ::chmod(locked.c_str(), 0);
    WithoutReadOverride asPlainUser;
    std::error_code readable;
    fs::directory_iterator(locked, readable);
    if (!readable)
        GTEST_SKIP() << "this process reads a folder whatever its mode";

    PlayerState st;
    std::vector<Playlist> playlists;
    EXPECT_EQ(errorsOf([&] { playlists = scanRoot(st, root.str()); }),
              "Failed to process file: " + locked.string() + ": Permission denied\n");
    EXPECT_EQ(shapeOf(playlists, root),
              (Shape{{"Album", {"Album/a.mid", "Album/z.mid"}}, {"Other", {"Other/c.mid"}}}));
    EXPECT_EQ(st.scanSongCount, 3);
}

TEST(ScanDefault, TheDefaultFolderReplacesTheLibraryWithoutBecomingARoot) {
    TempDir dir;
    dir.write("Music/Album/a.mid");
    PlayerState st;
    st.dataDirectory = dir.str(); // where the scan's save of the library puts the settings
    st.libraryCachePath = (dir.path() / "cache.json").string();
    st.playlists.resize(3);
    st.scanSongCount = 40;
    st.scanPlaylistCount = 3;
    {
        ScopedCurrentDirectory inDir(dir.path()); // the default folder is Music in it
        scanDefaultFolder(st);
    }
    EXPECT_EQ(shapeOf(st.playlists, dir), (Shape{{"Album", {"Music/Album/a.mid"}}}));
    EXPECT_EQ(std::tie(st.scanSongCount, st.scanPlaylistCount), std::tuple(1, 1));
}
