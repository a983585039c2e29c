#include "radio/selectionTestSupport.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>

using namespace selectionTest;

namespace {

// Three plain songs and one favourite in each family, all in one playlist.
void fillMixedLibrary(PlayerState& st) {
    std::vector<Song> songs;
    for (MusicType type : {musicTypeMidi, musicTypeMp3, musicTypeTracker}) {
        for (int i = 0; i < 3; ++i)
            songs.push_back(song(type));
        songs.push_back(favorite(type));
    }
    addPlaylist(st, songs);
    countLibrary(st);
}

bool allOf(const PlayerState& st, const std::vector<SongRef>& picks, auto test) {
    return std::all_of(picks.begin(), picks.end(),
                       [&](SongRef ref) { return test(songOf(st, ref)); });
}

} // namespace

// --- Weighting by favourites.

TEST(WeightedDraw, AFavouriteWithCountThreeComesFourTimesAsOften) {
    PlayerState st;
    addPlaylist(st, {favorite(musicTypeMp3, 3), song(musicTypeMp3)});
    countLibrary(st);
    setRatios(st, 0, 50, 0, 0, 0);
    st.historyDepth = 0;
    seedAll(st, 21);
    constexpr int draws = 50'000;
    int favourites = 0;
    for (SongRef ref : selectMany(st, draws))
        favourites += ref == SongRef{0, 0} ? 1 : 0;
    EXPECT_NEAR(static_cast<double>(favourites) / draws, 0.8, 0.01);
}

TEST(WeightedDraw, OnlyTheFavouriteFlagMakesASongStandMoreThanOnce) {
    PlayerState st;
    addPlaylist(st, {favorite(musicTypeMp3, 3), favorite(musicTypeMp3, 0), song(musicTypeMp3, 0, 3),
                     favorite(musicTypeMp3, -2)});
    countLibrary(st);
    setRatios(st, 0, 50, 0, 0, 0);
    seedAll(st, 22);
    selectNextSong(st);
    EXPECT_EQ(st.weightedSongTotal, 4 + 1 + 1 + 0);
}

// --- The favourite filters and the family.

TEST(Filters, FavoritesOnlyNeverPlaysAPlainSong) {
    PlayerState st;
    fillMixedLibrary(st);
    setRatios(st, 50, 50, 50, 50, 0);
    st.builtInStation = 1;
    st.historyDepth = 0;
    seedAll(st, 23);
    EXPECT_TRUE(allOf(st, selectMany(st, 300), [](const Song& s) { return s.isFavorite == 1; }));
}

TEST(Filters, NoFavoritesAllowedNeverPlaysAFavouriteOfAMusicFamily) {
    PlayerState st;
    fillMixedLibrary(st);
    setRatios(st, 50, 50, 50, 0, 0);
    st.builtInStation = 2;
    st.historyDepth = 0;
    seedAll(st, 24);
    EXPECT_TRUE(allOf(st, selectMany(st, 300), [](const Song& s) { return s.isFavorite == 0; }));
}

TEST(Filters, TheFavoritesFamilyOverridesNoFavoritesAllowed) {
    PlayerState st;
    fillMixedLibrary(st);
    setRatios(st, 0, 0, 0, 50, 0);
    st.builtInStation = 2;
    st.historyDepth = 0;
    seedAll(st, 25);
    EXPECT_TRUE(allOf(st, selectMany(st, 300), [](const Song& s) { return s.isFavorite == 1; }));
}

TEST(Filters, AMusicFamilyPlaysOnlyItsOwnType) {
    PlayerState st;
    fillMixedLibrary(st);
    setRatios(st, 0, 0, 50, 0, 0);
    st.historyDepth = 0;
    seedAll(st, 26);
    EXPECT_TRUE(allOf(st, selectMany(st, 300),
                      [](const Song& s) { return s.musicType == musicTypeTracker; }));
}

TEST(Filters, TheFavoritesFamilyHasSongsByTheFlagNotTheCount) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMp3, 0, 3)});
    EXPECT_TRUE(familyHasSongs(st, familyMp3));
    EXPECT_FALSE(familyHasSongs(st, familyMidi));
    EXPECT_FALSE(familyHasSongs(st, familyFavorites));
    EXPECT_FALSE(familyHasSongs(st, familyNone));
    st.playlists[0].songs[0].isFavorite = 1;
    EXPECT_TRUE(familyHasSongs(st, familyFavorites));
}

// --- The repeat window.

TEST(RepeatWindow, NoSongReturnsWhileItIsAmongTheLastRows) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMp3), song(musicTypeMp3), song(musicTypeMp3)});
    countLibrary(st);
    setRatios(st, 0, 50, 0, 0, 0);
    st.historyDepth = 2;
    seedAll(st, 27);
    std::vector<SongRef> picks = selectMany(st, 60);
    for (size_t i = 2; i < picks.size(); ++i) {
        EXPECT_NE(picks[i], picks[i - 1]) << "pick " << i;
        EXPECT_NE(picks[i], picks[i - 2]) << "pick " << i;
    }
}

TEST(RepeatWindow, DepthZeroLetsASongFollowItself) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMp3), song(musicTypeMp3)});
    countLibrary(st);
    setRatios(st, 0, 50, 0, 0, 0);
    st.historyDepth = 0;
    seedAll(st, 28);
    std::vector<SongRef> picks = selectMany(st, 100);
    EXPECT_NE(std::adjacent_find(picks.begin(), picks.end()), picks.end());
}

TEST(RepeatWindow, MinusOneOrADepthBeyondTheHistoryRefusesEveryRow) {
    for (int depth : {-1, 500}) {
        PlayerState st;
        addPlaylist(st, std::vector<Song>(5, song(musicTypeMp3)));
        countLibrary(st);
        setRatios(st, 0, 50, 0, 0, 0);
        st.historyDepth = depth;
        seedAll(st, 29);
        for (int s = 0; s < 4; ++s)
            appendHistory(st, musicTypeMp3, s, 0);
        for (int i = 0; i < 100; ++i)
            appendHistory(st, musicTypeStation, 0, 0);
        EXPECT_EQ(selectNextSong(st), (SongRef{0, 4})) << "depth " << depth;
    }
}

TEST(RepeatWindow, ARowOfAnotherTypeAtTheSamePlaceDoesNotRefuse) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMp3)});
    addPlaylist(st, std::vector<Song>(5, song(musicTypeMidi)));
    countLibrary(st);
    setRatios(st, 0, 50, 0, 0, 0);
    seedAll(st, 30);
    appendHistory(st, musicTypeMidi, 0, 0);
    // Were the row taken for the song, the plain pick would follow and land in playlist 1.
    unsigned seed = 0;
    for (Rand15 probe;; probe.seed(++seed))
        if (probe.next() % 6 != 0)
            break;
    st.rand15.seed(seed);
    EXPECT_EQ(selectNextSong(st), (SongRef{0, 0}));
}

// --- The plain pick.

TEST(PlainPick, WhenEveryDrawIsRefusedAnySongOfTheLibraryPlays) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMidi), song(musicTypeMidi)});
    addPlaylist(st, {favorite(musicTypeMp3), favorite(musicTypeMp3), song(musicTypeMidi)});
    countLibrary(st);
    setRatios(st, 50, 0, 0, 0, 0);
    st.builtInStation = 1;
    st.currentMusicType = musicTypeTracker;
    seedAll(st, 31);
    Rand15 predictor = st.rand15;
    int r = predictor.next() % 5;
    SongRef expected = r < 2 ? SongRef{0, r} : SongRef{1, r - 2};

    EXPECT_EQ(selectNextSong(st), expected);
    ASSERT_EQ(st.songHistory.size(), 1u);
    MusicType type = songOf(st, expected).musicType;
    EXPECT_EQ(st.songHistory[0], (HistoryEntry{type, expected.songIndex, expected.plistIndex}));
    EXPECT_EQ(st.previousMusicType, type); // nothing played before the first plain pick
    EXPECT_EQ(st.currentMusicType, type);
}

TEST(PlainPick, ALibrarySmallerThanTheWindowRepeatsASongRatherThanFallSilent) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMp3), song(musicTypeMp3)});
    countLibrary(st);
    setRatios(st, 0, 50, 0, 0, 0);
    seedAll(st, 32);
    std::vector<SongRef> picks = selectMany(st, 3);
    EXPECT_NE(picks[0], picks[1]);
    EXPECT_TRUE(picks[2] == picks[0] || picks[2] == picks[1]);
    EXPECT_EQ(st.historyEnd, 3);
}

TEST(PlainPick, StaleCountsGiveTheZeroReferenceAndChangeNothing) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMidi), song(musicTypeMidi)});
    addPlaylist(st, {song(musicTypeMp3)});
    countLibrary(st);
    st.currentMusicType = musicTypeTracker;
    st.previousMusicType = musicTypeTracker;

    st.scanSongCount = 1000; // r lands beyond the three songs there are
    unsigned seed = 0;
    for (Rand15 probe;; probe.seed(++seed))
        if (probe.next() % 1000 >= 3)
            break;
    st.rand15.seed(seed);
    EXPECT_EQ(pickPlainSong(st), (SongRef{0, 0}));

    st.scanSongCount = 3;
    st.scanPlaylistCount = 1; // only the first playlist is counted
    for (Rand15 probe;; probe.seed(++seed))
        if (probe.next() % 3 == 2)
            break;
    st.rand15.seed(seed);
    EXPECT_EQ(pickPlainSong(st), (SongRef{0, 0}));

    st.scanSongCount = 0;
    EXPECT_EQ(pickPlainSong(st), (SongRef{0, 0}));

    EXPECT_TRUE(st.songHistory.empty());
    EXPECT_EQ(st.historyEnd, 0);
    EXPECT_EQ(st.currentMusicType, musicTypeTracker);
    EXPECT_EQ(st.previousMusicType, musicTypeTracker);
}

// --- Library order.

class LibraryOrder : public testing::TestWithParam<int> {};

TEST_P(LibraryOrder, TheLastSongOfTheLastPlaylistWrapsToTheFirstSong) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMidi), song(musicTypeMidi)});
    addPlaylist(st, {song(musicTypeMp3), song(musicTypeMp3)});
    countLibrary(st);
    setRatios(st, 50, 50, 0, 0, 0);
    seedAll(st, 33);
    st.stationMode = GetParam();
    st.shuffle = 0;
    st.modePlaylist = 1;
    st.modeSongIndex = 1;
    EXPECT_EQ(selectNextSong(st), (SongRef{0, 0}));
    EXPECT_EQ(st.modePlaylist, 0);
    EXPECT_EQ(st.modeSongIndex, 0);
    EXPECT_EQ(st.currentMusicType, musicTypeMidi);
    EXPECT_EQ(st.songHistory.back(), (HistoryEntry{musicTypeMidi, 0, 0}));
}

INSTANTIATE_TEST_SUITE_P(OnePlaylistAndRadioMode, LibraryOrder, testing::Values(0, 1));

TEST(LibraryOrderGuards, PlaylistsWithoutSongsArePassedOver) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMidi), song(musicTypeMidi)});
    addPlaylist(st, {});
    addPlaylist(st, {song(musicTypeMp3)});
    addPlaylist(st, {});
    countLibrary(st);
    setRatios(st, 50, 50, 0, 0, 0);
    seedAll(st, 34);
    st.shuffle = 0;
    st.modeSongIndex = 0;
    std::vector<SongRef> picks = selectMany(st, 3);
    EXPECT_EQ(picks, (std::vector<SongRef>{{0, 1}, {2, 0}, {0, 0}}));

    st.modePlaylist = 9; // names no playlist: the cursor moves on to one that has songs
    EXPECT_EQ(selectNextSong(st), (SongRef{0, 0}));

    st.modeSongIndex = -5; // a cursor before the first song starts at the first song
    EXPECT_EQ(selectNextSong(st), (SongRef{0, 0}));
}

TEST(LibraryOrderGuards, ALibraryWithoutSongsGivesTheZeroReference) {
    PlayerState st;
    addPlaylist(st, {});
    addPlaylist(st, {});
    countLibrary(st);
    seedAll(st, 35);
    st.shuffle = 0;
    st.modePlaylist = 1;
    EXPECT_EQ(selectNextSong(st), (SongRef{0, 0}));
    EXPECT_EQ(st.modePlaylist, 1);
    EXPECT_TRUE(st.songHistory.empty());
}

// --- One playlist (stationMode 0).

TEST(OnePlaylist, DrawsOnlyFromItsPlaylistWithoutFiltersOrWindow) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMp3)});
    addPlaylist(st, {favorite(musicTypeMidi, 3), song(musicTypeMidi)});
    countLibrary(st);
    seedAll(st, 36);
    st.stationMode = 0;
    st.modePlaylist = 1;
    st.builtInStation = 1;
    std::vector<SongRef> picks = selectMany(st, 50);
    EXPECT_TRUE(
        std::all_of(picks.begin(), picks.end(), [](SongRef r) { return r.plistIndex == 1; }));
    EXPECT_NE(std::find(picks.begin(), picks.end(), SongRef{1, 1}), picks.end());
    EXPECT_EQ(st.weightedSongTotal, 2);
}

TEST(OnePlaylist, APlaylistWithoutSongsOrOutOfRangeGivesTheZeroReference) {
    for (int plist : {1, 2, -1}) {
        PlayerState st;
        addPlaylist(st, {song(musicTypeMp3)});
        addPlaylist(st, {});
        countLibrary(st);
        seedAll(st, 37);
        st.stationMode = 0;
        st.modePlaylist = plist;
        EXPECT_EQ(selectNextSong(st), (SongRef{0, 0})) << "playlist " << plist;
        EXPECT_TRUE(st.songHistory.empty()) << "playlist " << plist;
    }
}
