#include "library/rebuild.h"

#include "core/libraryEdits.h"
#include "core/playerState.h"
#include "support/output.h"
#include "support/tempDir.h"

#include <gtest/gtest.h>
#include <tuple>

TEST(Rebuild, ARootListedTwiceGivesEachPlaylistTwiceAndCountsAfresh) {
    TempDir dir;
    dir.write("music/Rock/a.mp3");
    dir.write("music/Jazz/b.mid");
    dir.write("music/Jazz/c.mid");
    dir.write("music/Notes/readme.txt");
    PlayerState st;
    st.dataDirectory = dir.str(); // whatever the rebuild saves stays in the fixture
    st.libraryCachePath = (dir.path() / "musicLibraryCache.json").string();
    st.playlists.resize(5);
    st.scanSongCount = 50;
    st.scanPlaylistCount = 5;
    st.directoryPaths = {dir.str() + "/music", dir.str() + "/music"};
    rebuildLibrary(st);
    std::vector<std::string> albums;
    for (const Playlist& playlist : st.playlists)
        albums.push_back(playlist.albumName);
    EXPECT_EQ(albums, (std::vector<std::string>{"Jazz", "Rock", "Jazz", "Rock"}));
    EXPECT_EQ(st.playlists[0].songs[0].songPath, st.playlists[2].songs[0].songPath);
    EXPECT_EQ(std::tie(st.scanSongCount, st.scanPlaylistCount), std::tuple(6, 4));
}

TEST(SoundFonts, OnlyFilesEndingInLowerCaseSf2AreFoundAndAMissingFolderGivesItsMessage) {
    TempDir dir;
    for (const char* name : {"b.sf2", "A.sf2", "c.SF2", "d.sf2.txt", ".sf2", "sub/e.sf2"})
        dir.write(name);
    dir.mkdir("folder.sf2");
    std::filesystem::create_symlink(dir.path() / "b.sf2", dir.path() / "linked.sf2");
    EXPECT_EQ(scanSoundFonts(dir.str()),
              (std::vector<std::string>{dir.str() + "/A.sf2", dir.str() + "/b.sf2",
                                        dir.str() + "/linked.sf2"}));
    std::string missing = dir.str() + "/SoundFonts";
    EXPECT_EQ(errorsOf([&] { EXPECT_TRUE(scanSoundFonts(missing).empty()); }),
              "Filesystem error: " + missing + ": No such file or directory\n");
}
