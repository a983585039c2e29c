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
    dir.mkdir("game/SongFavs.txt"); // a folder where the file would go
    PlayerState st;
    st.playlists = {
        Playlist{"Rock", {Song{"/m/a b.mp3", 1, 3, 2, 1}, Song{"/m/\xff\nx.mid"}}, 2, 0, 5, 1},
        Playlist{"Mods", {Song{"/m/x.xm", 1, 7, 1, 2}}, 1, 2, -1, 0}};
    st.directoryPaths = {"/m/Rock", "/m/Mods"};
    st.soundFontDirectoryPath = "/sf";
    EXPECT_EQ(errorsOf([&] {
                  for (const char* folder : {"/missing", "/game"}) {
                      st.marbleTunnelPath = dir.str() + folder;
                      exportForGame(st);
                  }
              }),
              "");
    EXPECT_EQ(TempDir::read(dir.path() / "game/MusicLibraryCache.txt"),
              "Rock\n0\n5\n1\n2\n/m/a b.mp3\n1\n3\n2\n1\n/m/\xff?x.mid\n0\n0\n0\n-1\n"
              "Mods\n2\n-1\n0\n1\n/m/x.xm\n1\n7\n1\n2\n");
    EXPECT_EQ(TempDir::read(dir.path() / "game/MusicPaths.txt"), "/m/Rock\n/m/Mods\n");
    EXPECT_EQ(TempDir::read(dir.path() / "game/SoundFontsPath.Txt"), "/sf\n");
    // No InternetStations.txt, no temporary file, and nothing where there is no folder.
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.path() / "game"), {}), 4);
    EXPECT_FALSE(fs::exists(dir.path() / "missing"));
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
    exportForGame(st);
    const fs::path file = dir.path() / "SongFavs.txt";
    EXPECT_EQ(TempDir::read(file),
              "3 1 0 1 " + paths[0] + "\n3 2 0 1 " + paths[1] + "\n3 3 0 1 " + paths[2] + "\n");
    std::vector<FavoriteEntry> back = readSongFavs(file.string());
    ASSERT_EQ(back.size(), 3u);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(std::tie(back[i].songType, back[i].songIndex, back[i].plistIndex,
                           back[i].favoriteCount, back[i].songPath),
                  std::tuple(3, i + 1, 0, 1, paths[i]));

    st.playlists[0].songs.resize(1); // no favourite: an empty file, not the old one
    exportForGame(st);
    EXPECT_TRUE(fs::is_regular_file(file) && TempDir::read(file).empty());
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
        SCOPED_TRACE(text);
        std::vector<std::string> paths;
        for (const FavoriteEntry& row : readSongFavs(dir.write("SongFavs.txt", text).string()))
            paths.push_back(row.songPath);
        EXPECT_EQ(paths, expected);
    }
    EXPECT_TRUE(readSongFavs((dir.path() / "missing.txt").string()).empty());
}

} // namespace
