#include "library/favorites.h"

#include "core/playerState.h"
#include "library/scan.h"
#include "support/output.h"
#include "support/tempDir.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

Song song(const std::string& path, MusicType type = musicTypeMp3) {
    return Song{path, 0, 0, 0, type};
}

FavoriteEntry row(const std::string& path, int count) {
    return FavoriteEntry{3, 0, 0, count, path};
}

// The exact and the damaged forms of the file are tested in util/jsonFileTest.cpp.
TEST(FavoritesFile, RowsAreMadeAnewFromTheLibrarysFlags) {
    PlayerState st;
    st.playlists = {Playlist{"A", {song("/m/A/x.mid", musicTypeMidi), song("/m/A/y.xm", 2)}, 2},
                    Playlist{"B", {song("/m/B/z.mp3")}, 1}};
    countFavoriteUp(st.playlists[0].songs[1]);
    countFavoriteUp(st.playlists[0].songs[1]);
    countFavoriteUp(st.playlists[1].songs[0]);
    st.favorites = {row("/stale/old.mp3", 9)}; // the library is the truth
    rebuildFavorites(st);
    ASSERT_EQ(st.favorites.size(), 2u);
    const FavoriteEntry& tracker = st.favorites[0];
    EXPECT_EQ(tracker.songPath, "/m/A/y.xm");
    EXPECT_EQ(tracker.songType, 4); // the favourites' own numbering of the families
    EXPECT_EQ(tracker.songIndex, 1);
    EXPECT_EQ(tracker.favoriteCount, 2);
    EXPECT_EQ(st.favorites[1].plistIndex, 1);
    EXPECT_EQ(st.favorites[1].songType, 3);
}

TEST(FavoritesFile, AMergeKeepsTheOlderRowOfAPathThatDiffersOnlyInCase) {
    TempDir dir;
    std::string path = dir.write("favorite.json", R"({"favorites": [
        {"favoriteCount": 7, "plistIndex": 0, "songIndex": 0, "songPath": "/M/ROCK/A.MP3",
         "songType": 3},
        {"favoriteCount": 2, "plistIndex": 0, "songIndex": 1, "songPath": "/m/rock/b.mp3",
         "songType": 3}]})")
                           .string();
    PlayerState st;
    st.favorites = {row("/m/Rock/a.mp3", 1)};
    mergeFavoritesFile(st, path);
    ASSERT_EQ(st.favorites.size(), 2u);
    EXPECT_EQ(st.favorites[0].favoriteCount, 1);
    EXPECT_EQ(st.favorites[1].songPath, "/m/rock/b.mp3");

    const std::string missing = (dir.path() / "missing.json").string();
    EXPECT_EQ(errorsOf([&] { mergeFavoritesFile(st, missing); }),
              "Failed to open " + missing + " for reading.\n");
}

TEST(FavoritesFile, TheScanMergesOnlyFilesNamedExactlyFavoriteJson) {
    TempDir dir;
    const std::string rows =
        R"({"favorites": [{"favoriteCount": 1, "plistIndex": 0, "songIndex": 0, "songPath": ")";
    auto file = [&](const std::string& where, const std::string& name) {
        dir.write(where, rows + name + R"(", "songType": 3}]})");
    };
    file("root/favorite.json", "in-root.mp3");
    file("root/Album/deep/favorite.json", "deep.mp3");
    file("root/Album/FAVORITE.JSON", "capitals.mp3");
    file("root/Album/favorite.JSON", "capital-extension.mp3");
    dir.write("root/Album/song.mp3");
    PlayerState st;
    scanRoot(st, (dir.path() / "root").string());
    ASSERT_EQ(st.favorites.size(), 2u);
    EXPECT_EQ(st.favorites[0].songPath, "in-root.mp3");
    EXPECT_EQ(st.favorites[1].songPath, "deep.mp3");
}

TEST(ApplyFavorites, MatchesByFileNameInAnyCaseOncePerPlaylistInEveryPlaylist) {
    PlayerState st;
    st.playlists = {Playlist{"A", {song("/m/A/Song.mp3"), song("/m/A/cd2/song.MP3")}, 2},
                    Playlist{"B", {song("/elsewhere/B/SONG.mp3")}, 1},
                    Playlist{"C", {song("/m/C/other.mp3")}, 1}};
    st.playlists[2].songs[0].isFavorite = 1; // a song no row names keeps its flags
    st.playlists[2].songs[0].favoriteCount = 5;
    EXPECT_EQ(logOf([&] {
                  applyFavorites(st, {row("C:\\Music\\Old\\song.mp3", 2), row("/m/A/song.mp3", 3),
                                      row("/gone/nowhere.mp3", 1)});
              }),
              "Could not find song: nowhere.mp3\n");
    EXPECT_EQ(st.playlists[0].songs[0].isFavorite, 1);
    EXPECT_EQ(st.playlists[0].songs[0].favoriteCount, 3); // the later row wins
    EXPECT_EQ(st.playlists[0].songs[1].isFavorite, 0);    // only the first of a playlist
    EXPECT_EQ(st.playlists[1].songs[0].favoriteCount, 3);
    EXPECT_EQ(st.playlists[2].songs[0].favoriteCount, 5);
}

TEST(OlderFavorites, ReadsWindowsLineEndsDropsRowsWithoutAPathAndKeepsLongPathsWhole) {
    TempDir dir;
    PlayerState st;
    st.dataDirectory = dir.str();
    st.favorites = {row("/before.mp3", 1)};
    EXPECT_EQ(errorsOf([&] { loadOlderFavorites(st); }),
              "Failed to open favoriteMusic.cif for reading.\n");
    EXPECT_EQ(st.favorites.size(), 1u);

    const std::string longPath = "/music/" + std::string(300, 'l') + ".mp3";
    dir.write("favoriteMusic.cif", "3\r\n7\r\n2\r\n5\r\nC:\\Music\\a.mp3\r\n"
                                   "\r\n\r\n\r\n\r\n\r\n" // no path: dropped
                                   "1\r\n\r\n\r\n2\r\n" + // empty numbers are 0
                                       longPath +
                                       "\r\n" + //
                                       "x\r\n1\r\n1\r\n1\r\n/bad-number.mp3\r\n");
    std::string log;
    EXPECT_EQ(errorsOf([&] { log = logOf([&] { loadOlderFavorites(st); }); }),
              "favoriteMusic.cif: 1 rows could not be read and were left out.\n");
    EXPECT_EQ(log, "Favorites loaded from favoriteMusic.cif.\n");
    ASSERT_EQ(st.favorites.size(), 2u);
    EXPECT_EQ(st.favorites[0].songType, 3);
    EXPECT_EQ(st.favorites[0].songIndex, 7);
    EXPECT_EQ(st.favorites[0].plistIndex, 2);
    EXPECT_EQ(st.favorites[0].favoriteCount, 5);
    EXPECT_EQ(st.favorites[0].songPath, "C:\\Music\\a.mp3");
    EXPECT_EQ(st.favorites[1].songIndex, 0);
    EXPECT_EQ(st.favorites[1].songPath, longPath);

    dir.write("favoriteMusic.cif", "");
    EXPECT_EQ(logOf([&] { loadOlderFavorites(st); }), "Favorites loaded from favoriteMusic.cif.\n");
    EXPECT_TRUE(st.favorites.empty());
}

TEST(FavoriteCounts, SongsStopAtZeroWhilePlaylistsAndStationsGoBelow) {
    Song s{"/m/a.mp3", 1, 0, 1, musicTypeMp3};
    countFavoriteDown(s);
    countFavoriteDown(s);
    EXPECT_EQ(s.favoriteCount, 0);
    EXPECT_EQ(s.isFavorite, 0);
    Playlist p;
    countFavoriteUp(p);
    countFavoriteDown(p);
    countFavoriteDown(p);
    EXPECT_EQ(p.favoriteCount, -1);
    EXPECT_EQ(p.isFavorite, 0);
    RadioStation r;
    countFavoriteDown(r);
    countFavoriteUp(r);
    EXPECT_EQ(r.favoriteCount, 0);
    EXPECT_EQ(r.favorite, 1); // set by the press up, as the counts go
}

TEST(FavoriteCounts, ClearAllLeavesNoFavouriteAnywhere) {
    PlayerState st;
    st.radioStations = {RadioStation{"S", "http://127.0.0.1/", 1, 3}};
    st.playlists = {Playlist{"A", {Song{"/m/a.mp3", 1, 4, 2, 1}}, 1, 1, 5, 1}};
    st.favorites = {row("/m/a.mp3", 2)};
    st.weightedSongTotal = 7;
    st.favoriteSongCount = 1;
    clearAllFavorites(st);
    EXPECT_EQ(st.radioStations[0].favorite + st.radioStations[0].favoriteCount, 0);
    EXPECT_EQ(st.playlists[0].isFavorite + st.playlists[0].favoriteCount, 0);
    EXPECT_EQ(st.playlists[0].songs[0].isFavorite + st.playlists[0].songs[0].favoriteCount, 0);
    EXPECT_EQ(st.playlists[0].songs[0].playCount, 4);
    EXPECT_EQ(st.playlists[0].iRadioMode, 1);
    EXPECT_EQ(st.weightedSongTotal + st.favoriteSongCount, 0);
    EXPECT_TRUE(st.favorites.empty());
}

} // namespace
