#include "settings/exchangeFiles.h"

#include "core/playerState.h"
#include "support/output.h"
#include "support/tempDir.h"

#include <gtest/gtest.h>
#include <tuple>

namespace {

namespace fs = std::filesystem;

TEST(ExchangeFiles, HoldTheLibraryAsLinesOfItsBytesAndSkipAFileThatCannotBeWritten) {
    TempDir dir;
    dir.mkdir("MusicPaths.txt");                 // a folder where the file would go
    dir.write("SongFavs.txt", "3 0 0 1 /old\n"); // no favourite now: an empty file
    PlayerState st;
    st.marbleTunnelPath = dir.str();
    st.playlists = {
        Playlist{"Rock", {Song{"/m/a b.mp3", 0, 3, 2, 1}, Song{"/m/\xff\nx.mid"}}, 2, 0, 5, 1},
        Playlist{"Mods", {Song{"/m/x.xm", 0, 7, 1, 2}}, 1, 2, -1, 0}};
    st.soundFontDirectoryPath = "/sf";
    EXPECT_EQ(errorsOf([&] { exportForGame(st); }), "");
    EXPECT_EQ(TempDir::read(dir.path() / "MusicLibraryCache.txt"),
              "Rock\n0\n5\n1\n2\n/m/a b.mp3\n0\n3\n2\n1\n/m/\xff?x.mid\n0\n0\n0\n-1\n"
              "Mods\n2\n-1\n0\n1\n/m/x.xm\n0\n7\n1\n2\n");
    EXPECT_EQ(TempDir::read(dir.path() / "SongFavs.txt"), "");
    EXPECT_EQ(TempDir::read(dir.path() / "SoundFontsPath.Txt"), "/sf\n");
    // SongFavs.txt, the folder and two more: no InternetStations.txt, no temporary file.
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), {}), 4);
}

TEST(ExchangeFiles, FavouritePathsOfAnyLengthAndWithBlanksComeBackWhole) {
    TempDir dir;
    PlayerState st;
    st.marbleTunnelPath = dir.str();
    const std::string paths[] = {"/m/my music/a  b .mp3", "/m/" + std::string(252, 'x') + ".mp3",
                                 "/m/" + std::string(993, 'y') + ".mp3"}; // 259 and 1,000 bytes
    st.playlists = {Playlist{"P", {Song{"/m/other.mid"}}, 1}};
    for (const std::string& path : paths)
        st.playlists[0].songs.push_back(Song{path, 1, 0, 1, musicTypeMp3});
    st.directoryPaths = {"/m", "/my music"};
    exportForGame(st);
    EXPECT_EQ(TempDir::read(dir.path() / "MusicPaths.txt"), "/m\n/my music\n");
    std::vector<FavoriteEntry> back = readSongFavs((dir.path() / "SongFavs.txt").string());
    ASSERT_EQ(back.size(), 3u);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(std::tie(back[i].songType, back[i].songIndex, back[i].plistIndex,
                           back[i].favoriteCount, back[i].songPath),
                  std::tuple(3, i + 1, 0, 1, paths[i]));
}

TEST(SongFavs, AreReadLineByLineUntilALineWithoutFourNumbers) {
    const std::pair<std::string, std::vector<std::string>> cases[] = {
        // text, the paths read
        {"1 7 2 3 /m/a.mp3\n4 0 0 -1 /m/b c.xm", {"/m/a.mp3", "/m/b c.xm"}},
        {"1 7 2 3 /m/a.mp3\r\n4 0 0 1  /m/b.xm\r\n", {"/m/a.mp3", " /m/b.xm"}},
        {"1 7 2 3 /m/a.mp3\n1 2 3\n4 0 0 1 /m/b.xm\n", {"/m/a.mp3"}},
        {"1 7 2 3 /m/a.mp3\n\n4 0 0 1 /m/b.xm\n", {"/m/a.mp3"}}};
    TempDir dir;
    for (const auto& [text, expected] : cases) {
        std::vector<std::string> paths;
        for (const FavoriteEntry& row : readSongFavs(dir.write("SongFavs.txt", text).string()))
            paths.push_back(row.songPath);
        EXPECT_EQ(paths, expected) << text;
    }
    EXPECT_TRUE(readSongFavs((dir.path() / "missing.txt").string()).empty());
}

} // namespace
