#include "radio/selectionTestSupport.h"

#include <algorithm>
#include <gtest/gtest.h>

using namespace selectionTest;

TEST(WeightedDraw, AFavouriteStandsOncePlusItsCountAndAPlainSongOnce) {
    PlayerState st;
    addPlaylist(st, {favorite(musicTypeMp3, 3), song(musicTypeMp3), song(musicTypeMp3, 0, 3),
                     favorite(musicTypeMp3, 0), favorite(musicTypeMp3, -2)});
    prepare(st, {0, 50, 0, 0, 0}, 21);
    st.historyDepth = 0;
    constexpr int draws = 70'000;
    std::array<int, 5> seen{};
    for (SongRef ref : selectMany(st, draws))
        ++seen.at(ref.songIndex);
    // Weights 4, 1, 1, 1 and 0 (a negative count stands no times): the favourite with count 3
    // comes four times as often as each other song.
    EXPECT_NEAR(static_cast<double>(seen[0]) / draws, 4 / 7.0, 0.01);
    for (int s : {1, 2, 3})
        EXPECT_NEAR(static_cast<double>(seen[s]) / draws, 1 / 7.0, 0.01) << "song " << s;
    EXPECT_EQ(seen[4], 0);
}

TEST(Filters, EachFilterAndFamilyPlaysOnlyItsSongs) {
    struct Case {
        const char* why;
        int builtInStation;
        Ratios ratios;
        int isFavorite; // the flag every pick must have, or -1
        int musicType;  // the type every pick must have, or -1
    };
    const Case cases[] = {
        {"Favorites Only", 1, {50, 50, 50, 50, 0}, 1, -1},
        {"No Favorites Allowed", 2, {50, 50, 50, 0, 0}, 0, -1},
        {"the Favorites family overrides No Favorites Allowed", 2, {0, 0, 0, 50, 0}, 1, -1},
        {"a music family", 0, {0, 0, 50, 0, 0}, -1, musicTypeTracker},
    };
    for (const Case& c : cases) {
        PlayerState st;
        std::vector<Song> songs; // three plain songs and one favourite in each family
        for (MusicType type : {musicTypeMidi, musicTypeMp3, musicTypeTracker}) {
            songs.insert(songs.end(), 3, song(type));
            songs.push_back(favorite(type));
        }
        addPlaylist(st, songs);
        prepare(st, c.ratios, 23);
        st.builtInStation = c.builtInStation;
        st.historyDepth = 0;
        for (SongRef ref : selectMany(st, 300)) {
            const Song& picked = st.playlists.at(ref.plistIndex).songs.at(ref.songIndex);
            ASSERT_TRUE(c.isFavorite < 0 || picked.isFavorite == c.isFavorite) << c.why;
            ASSERT_TRUE(c.musicType < 0 || picked.musicType == c.musicType) << c.why;
        }
    }
}

TEST(Filters, TheFavoritesFamilyHasSongsByTheFlagNotTheCount) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMp3, 0, 3)});
    EXPECT_FALSE(familyHasSongs(st, familyFavorites));
    st.playlists[0].songs[0].isFavorite = 1;
    EXPECT_TRUE(familyHasSongs(st, familyFavorites));
}

TEST(RepeatWindow, NoSongReturnsWhileItIsAmongTheLastRowsUnlessTheDepthIsZero) {
    PlayerState st;
    addPlaylist(st, std::vector<Song>(3, song(musicTypeMp3)));
    prepare(st, {0, 50, 0, 0, 0}, 27);
    st.historyDepth = 2;
    std::vector<SongRef> picks = selectMany(st, 60);
    for (size_t i = 2; i < picks.size(); ++i) {
        EXPECT_NE(picks[i], picks[i - 1]) << "pick " << i;
        EXPECT_NE(picks[i], picks[i - 2]) << "pick " << i;
    }

    st.historyDepth = 0;
    picks = selectMany(st, 100);
    EXPECT_NE(std::adjacent_find(picks.begin(), picks.end()), picks.end());

    // A window wider than the library repeats a song rather than fall silent.
    st.historyDepth = 4;
    selectMany(st, 5);
    EXPECT_EQ(st.historyEnd, 165);
}

TEST(RepeatWindow, MinusOneOrADepthBeyondTheHistoryRefusesEveryRowOfTheSameType) {
    for (int depth : {-1, 500}) {
        for (unsigned seed = 0; seed < 10; ++seed) {
            PlayerState st;
            addPlaylist(st, std::vector<Song>(5, song(musicTypeMp3)));
            prepare(st, {0, 50, 0, 0, 0}, seed);
            st.historyDepth = depth;
            for (int s : {0, 1, 2, 4})
                appendHistory(st, musicTypeMp3, s, 0);
            // Rows of another type at song 3's place do not refuse it; were they taken for the
            // song, the plain pick would follow and land elsewhere.
            for (int i = 0; i < 100; ++i)
                appendHistory(st, musicTypeMidi, 3, 0);
            seedRand15Where(st, [](int r) { return r % 5 != 3; });
            EXPECT_EQ(selectNextSong(st), (SongRef{0, 3})) << "depth " << depth;
        }
    }
}

TEST(PlainPick, WhenEveryDrawIsRefusedAnySongOfTheLibraryPlays) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMidi), song(musicTypeMidi)});
    addPlaylist(st, {favorite(musicTypeMp3), favorite(musicTypeMp3), song(musicTypeMidi)});
    prepare(st, {50, 0, 0, 0, 0}, 31);
    st.builtInStation = 1;
    st.currentMusicType = musicTypeTracker;
    seedRand15Where(st, [](int r) { return r % 5 == 3; }); // the fourth of the five songs
    EXPECT_EQ(selectNextSong(st), (SongRef{1, 1}));
    EXPECT_EQ(st.songHistory, (std::vector<HistoryEntry>{{musicTypeMp3, 1, 1}}));
    EXPECT_EQ(st.previousMusicType, musicTypeMp3); // nothing played before the first plain pick
    EXPECT_EQ(st.currentMusicType, musicTypeMp3);
}

TEST(PlainPick, StaleCountsGiveTheZeroReferenceAndChangeNothing) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMidi), song(musicTypeMidi)});
    addPlaylist(st, {song(musicTypeMp3)});
    prepare(st, {}, 0);
    st.currentMusicType = st.previousMusicType = musicTypeTracker;

    st.scanSongCount = 1000; // r lands beyond the three songs there are
    seedRand15Where(st, [](int r) { return r % 1000 >= 3; });
    EXPECT_EQ(pickPlainSong(st), (SongRef{0, 0}));

    st.scanSongCount = 3;
    st.scanPlaylistCount = 1; // only the first playlist is counted
    seedRand15Where(st, [](int r) { return r % 3 == 2; });
    EXPECT_EQ(pickPlainSong(st), (SongRef{0, 0}));

    st.scanSongCount = 0;
    EXPECT_EQ(pickPlainSong(st), (SongRef{0, 0}));

    EXPECT_TRUE(st.songHistory.empty());
    EXPECT_EQ(st.historyEnd, 0);
    EXPECT_EQ(st.currentMusicType, musicTypeTracker);
    EXPECT_EQ(st.previousMusicType, musicTypeTracker);
}

// In the one-playlist mode too, shuffle off plays the library in order.
class LibraryOrder : public testing::TestWithParam<int> {};

TEST_P(LibraryOrder, PassesOverPlaylistsWithoutSongsAndWrapsToTheFirstSong) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMidi), song(musicTypeMidi)});
    addPlaylist(st, {});
    addPlaylist(st, {song(musicTypeMp3)});
    addPlaylist(st, {});
    prepare(st, {50, 50, 0, 0, 0}, 34);
    st.stationMode = GetParam();
    st.shuffle = 0;
    st.modeSongIndex = 0;
    EXPECT_EQ(selectMany(st, 3), (std::vector<SongRef>{{0, 1}, {2, 0}, {0, 0}}));
    EXPECT_EQ(st.modePlaylist, 0);
    EXPECT_EQ(st.modeSongIndex, 0);
    EXPECT_EQ(st.currentMusicType, musicTypeMidi);
    EXPECT_EQ(st.songHistory.back(), (HistoryEntry{musicTypeMidi, 0, 0}));

    st.modePlaylist = 9; // names no playlist: the cursor moves on to one that has songs
    EXPECT_EQ(selectNextSong(st), (SongRef{0, 0}));

    st.modeSongIndex = -5; // a cursor before the first song starts at the first song
    EXPECT_EQ(selectNextSong(st), (SongRef{0, 0}));

    // A library without songs gives the zero reference and leaves the cursor.
    st.playlists[0].songs.clear();
    st.playlists[2].songs.clear();
    st.modePlaylist = 1;
    EXPECT_EQ(selectNextSong(st), (SongRef{0, 0}));
    EXPECT_EQ(st.modePlaylist, 1);
    EXPECT_EQ(st.historyEnd, 5);
}

INSTANTIATE_TEST_SUITE_P(OnePlaylistAndRadioMode, LibraryOrder, testing::Values(0, 1));

TEST(OnePlaylist, DrawsOnlyFromItsPlaylistWithoutFiltersOrWindow) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMp3)});
    addPlaylist(st, {favorite(musicTypeMidi, 3), song(musicTypeMidi)});
    addPlaylist(st, {});
    prepare(st, {}, 36);
    st.stationMode = 0;
    st.modePlaylist = 1;
    st.builtInStation = 1;
    std::vector<SongRef> picks = selectMany(st, 50);
    EXPECT_TRUE(std::ranges::all_of(picks, [](SongRef r) { return r.plistIndex == 1; }));
    EXPECT_NE(std::ranges::find(picks, SongRef{1, 1}), picks.end());
    EXPECT_EQ(st.weightedSongTotal, 2);

    // A playlist without songs, or none at all, gives the zero reference and records nothing.
    for (int plist : {2, 3, -1}) {
        st.modePlaylist = plist;
        EXPECT_EQ(selectNextSong(st), (SongRef{0, 0})) << "playlist " << plist;
        EXPECT_EQ(st.historyEnd, 50) << "playlist " << plist;
    }
}
