#include "library/favorites.h"

#include "core/playerState.h"
#include "library/scan.h"
#include "support/output.h"
#include "support/tempDir.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <tuple>

namespace {

Song song(const std::string& path, MusicType type = musicTypeMp3) {
    return Song{path, 0, 0, 0, type};
}

FavoriteEntry row(const std::string& path, int count) {
    return FavoriteEntry{3, 0, 0, count, path};
}

// A favourites row as type, song, playlist, count and path.
using Row = std::tuple<int, int, int, int, std::string>;

std::vector<Row> rowsOf(const PlayerState& st) {
    std::vector<Row> rows;
    for (const FavoriteEntry& r : st.favorites)
        rows.emplace_back(r.songType, r.songIndex, r.plistIndex, r.favoriteCount, r.songPath);
    return rows;
}

// Writes favorite.json at path with the player's writer, as a run leaves it.
void writeFavorites(const std::string& path, std::vector<FavoriteEntry> rows) {
    PlayerState st;
    st.favorites = std::move(rows);
    saveFavoritesFile(st, path);
}

// The exact and the damaged forms of the file are tested in util/jsonFileTest.cpp.
TEST(FavoritesFile, RowsAreMadeAnewFromTheLibrarysFlags) {
    PlayerState st;
    st.playlists = {Playlist{"A", {song("/m/A/x.mid", 0), Song{"/m/A/y.xm", 1, 0, 2, 2}}, 2},
                    Playlist{"B", {Song{"/m/B/z.mp3", 1, 0, 1, 1}}, 1}};
    st.favorites = {row("/stale/old.mp3", 9)}; // the library is the truth
    rebuildFavorites(st);
    // The favourites' own numbering of the families: 4 is Tracker.
    EXPECT_EQ(rowsOf(st),
              (std::vector<Row>{{4, 1, 0, 2, "/m/A/y.xm"}, {3, 0, 1, 1, "/m/B/z.mp3"}}));
}

TEST(FavoritesFile, AMergeKeepsTheOlderRowOfAPathThatDiffersOnlyInCase) {
    TempDir dir;
    const std::string path = (dir.path() / "favorite.json").string();
    writeFavorites(path, {row("/M/ROCK/A.MP3", 7), FavoriteEntry{3, 1, 0, 2, "/m/rock/b.mp3"}});
    PlayerState st;
    st.favorites = {row("/m/Rock/a.mp3", 1)};
    mergeFavoritesFile(st, path);
    EXPECT_EQ(rowsOf(st),
              (std::vector<Row>{{3, 0, 0, 1, "/m/Rock/a.mp3"}, {3, 1, 0, 2, "/m/rock/b.mp3"}}));

    const std::string missing = (dir.path() / "missing.json").string();
    EXPECT_EQ(errorsOf([&] { mergeFavoritesFile(st, missing); }),
              "Failed to open " + missing + " for reading.\n");
}

TEST(FavoritesFile, TheScanMergesOnlyFilesNamedExactlyFavoriteJson) {
    TempDir dir;
    dir.write("root/Album/deep/song.mp3");
    for (const char* name : {"favorite.json", "Album/deep/favorite.json", "Album/FAVORITE.JSON",
                             "Album/favorite.JSON"})
        writeFavorites((dir.path() / "root" / name).string(), {row(name, 1)});
    PlayerState st;
    scanRoot(st, (dir.path() / "root").string());
    EXPECT_EQ(rowsOf(st), (std::vector<Row>{{3, 0, 0, 1, "favorite.json"},
                                            {3, 0, 0, 1, "Album/deep/favorite.json"}}));
}

TEST(ApplyFavorites, MatchesByFileNameInAnyCaseOncePerPlaylistInEveryPlaylist) {
    PlayerState st;
    st.playlists = {Playlist{"A", {song("/m/A/Song.mp3"), song("/m/A/cd2/song.MP3")}, 2},
                    Playlist{"B", {song("/elsewhere/B/SONG.mp3")}, 1},
                    Playlist{"C", {Song{"/m/C/other.mp3", 1, 0, 5, 1}}, 1}};
    EXPECT_EQ(logOf([&] {
                  applyFavorites(st, {row("C:\\Music\\Old\\song.mp3", 2), row("/m/A/song.mp3", 3),
                                      row("/gone/nowhere.mp3", 1)});
              }),
              "Could not find song: nowhere.mp3\n");
    EXPECT_EQ(st.playlists[0].songs[0].isFavorite, 1);
    EXPECT_EQ(st.playlists[0].songs[0].favoriteCount, 3); // the later row wins
    EXPECT_EQ(st.playlists[0].songs[1].isFavorite, 0);    // only the first of a playlist
    EXPECT_EQ(st.playlists[1].songs[0].favoriteCount, 3);
    EXPECT_EQ(st.playlists[2].songs[0].favoriteCount, 5); // named by no row: kept
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
    // A row, one without a path (dropped), one with empty numbers (0), one with a bad number.
    dir.write("favoriteMusic.cif",
              "3\r\n7\r\n2\r\n5\r\nC:\\Music\\a.mp3\r\n\r\n\r\n\r\n\r\n\r\n1\r\n\r\n\r\n2\r\n" +
                  longPath + "\r\nx\r\n1\r\n1\r\n1\r\n/bad-number.mp3\r\n");
    std::string log;
    EXPECT_EQ(errorsOf([&] { log = logOf([&] { loadOlderFavorites(st); }); }),
              "favoriteMusic.cif: 1 rows could not be read and were left out.\n");
    EXPECT_EQ(log, "Favorites loaded from favoriteMusic.cif.\n");
    EXPECT_EQ(rowsOf(st),
              (std::vector<Row>{{3, 7, 2, 5, "C:\\Music\\a.mp3"}, {1, 0, 0, 2, longPath}}));

    dir.write("favoriteMusic.cif", "");
    EXPECT_EQ(logOf([&] { loadOlderFavorites(st); }), "Favorites loaded from favoriteMusic.cif.\n");
    EXPECT_TRUE(st.favorites.empty());
}

TEST(FavoriteCounts, SongsStopAtZeroWhilePlaylistsAndStationsGoBelow) {
    Song s{"/m/a.mp3", 1, 0, 1, musicTypeMp3};
    countFavoriteDown(s);
    countFavoriteDown(s);
    Playlist p;
    countFavoriteUp(p);
    countFavoriteDown(p);
    countFavoriteDown(p);
    RadioStation r;
    countFavoriteDown(r);
    countFavoriteUp(r); // sets the flag, as the counts go
    EXPECT_EQ(std::tuple(s.favoriteCount, s.isFavorite, p.favoriteCount, p.isFavorite,
                         r.favoriteCount, r.favorite),
              std::tuple(0, 0, -1, 0, 0, 1));
}

TEST(FavoriteCounts, ClearAllLeavesNoFavouriteAnywhere) {
    PlayerState st;
    st.radioStations = {RadioStation{"S", "http://127.0.0.1/", 1, 3}};
    st.playlists = {Playlist{"A", {Song{"/m/a.mp3", 1, 4, 2, 1}}, 1, 1, 5, 1}};
    st.favorites = {row("/m/a.mp3", 2)};
    st.weightedSongTotal = 7;
    st.favoriteSongCount = 1;
    clearAllFavorites(st);
    const RadioStation& r = st.radioStations[0];
    const Playlist& p = st.playlists[0];
    const Song& s = p.songs[0];
    EXPECT_EQ(std::tuple(r.favorite, r.favoriteCount, p.isFavorite, p.favoriteCount, s.isFavorite,
                         s.favoriteCount, st.weightedSongTotal, st.favoriteSongCount),
              std::tuple(0, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_EQ(std::tuple(s.playCount, p.iRadioMode), std::tuple(4, 1)); // not favourites
    EXPECT_TRUE(st.favorites.empty());
}

} // namespace
