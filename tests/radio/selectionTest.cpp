#include "radio/selection.h"

#include "radio/selectionTestSupport.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <tuple>

using namespace selectionTest;

namespace {

// Songs of all three families (MIDI left out on request), a favourite and two stations.
void fillEveryFamily(PlayerState& st, bool withMidi = true) {
    std::vector<Song> songs{song(musicTypeMp3), song(musicTypeTracker), favorite(musicTypeMp3)};
    if (withMidi)
        songs.push_back(song(musicTypeMidi));
    addPlaylist(st, songs);
    addStations(st, {0, 0});
}

// Once the run is past its first draw, these always draw the Radio family.
constexpr Ratios radioOnly{0, 0, 0, 0, 50};

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
    // comes four times as often as each other song, which it could not if depth 0 refused repeats.
    for (int s : {0, 1, 2, 3})
        EXPECT_NEAR(seen[s] / double(draws), (s == 0 ? 4 : 1) / 7.0, 0.01) << "song " << s;
    EXPECT_EQ(seen[4], 0);
}

TEST(Filters, EachFilterAndFamilyPlaysOnlyItsSongs) {
    std::vector<Song> songs; // three plain songs and one favourite in each family
    for (MusicType type : {musicTypeMidi, musicTypeMp3, musicTypeTracker}) {
        songs.insert(songs.end(), 3, song(type));
        songs.push_back(favorite(type));
    }
    // The built-in station, the ratios, and the flag and type every pick must have (-1: any).
    const std::tuple<const char*, int, Ratios, int, int> cases[] = {
        {"Favorites Only", 1, {50, 50, 50, 50, 0}, 1, -1},
        {"No Favorites Allowed", 2, {50, 50, 50, 0, 0}, 0, -1},
        {"the Favorites family overrides No Favorites Allowed", 2, {0, 0, 0, 50, 0}, 1, -1},
        {"a music family", 0, {0, 0, 50, 0, 0}, -1, musicTypeTracker},
    };
    for (const auto& [why, builtInStation, ratios, isFavorite, musicType] : cases) {
        PlayerState st;
        addPlaylist(st, songs);
        prepare(st, ratios, 23);
        st.builtInStation = builtInStation;
        st.historyDepth = 0;
        for (SongRef ref : selectMany(st, 300)) {
            const Song& picked = st.playlists.at(ref.plistIndex).songs.at(ref.songIndex);
            ASSERT_TRUE(isFavorite < 0 || picked.isFavorite == isFavorite) << why;
            ASSERT_TRUE(musicType < 0 || picked.musicType == musicType) << why;
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

TEST(RepeatWindow, NoSongReturnsWhileItIsAmongTheLastRows) {
    PlayerState st;
    addPlaylist(st, std::vector<Song>(3, song(musicTypeMp3)));
    prepare(st, {0, 50, 0, 0, 0}, 27);
    st.historyDepth = 2;
    std::vector<SongRef> picks = selectMany(st, 60);
    for (size_t i = 2; i < picks.size(); ++i) {
        EXPECT_NE(picks[i], picks[i - 1]) << "pick " << i;
        EXPECT_NE(picks[i], picks[i - 2]) << "pick " << i;
    }

    // A window wider than the library repeats a song rather than fall silent.
    st.historyDepth = 4;
    selectMany(st, 5);
    EXPECT_EQ(st.historyEnd, 65);
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
    // Nothing played before the first plain pick, so the previous type is the new one too.
    EXPECT_EQ(std::tie(st.previousMusicType, st.currentMusicType),
              std::tuple(musicTypeMp3, musicTypeMp3));
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

    EXPECT_EQ(
        std::tuple(st.songHistory.size(), st.historyEnd, st.currentMusicType, st.previousMusicType),
        std::tuple(0u, 0, musicTypeTracker, musicTypeTracker));
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
    EXPECT_EQ(std::tie(st.modePlaylist, st.modeSongIndex, st.currentMusicType),
              std::tuple(0, 0, musicTypeMidi));
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
    EXPECT_EQ(std::tie(st.modePlaylist, st.historyEnd), std::tuple(1, 5));
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

TEST(FamilyDraw, SharesFollowTheWholeNumbersOfRThatFallInEachBand) {
    const std::pair<Ratios, std::array<double, 5>> cases[] = {
        // The cumulative edges are 22.73, 45.45, 68.18 and 77.27: r 0..22 is MIDI, 23..45 MP3,
        // 46..68 Favorites, 69..77 Radio, and 78..99 is left to Tracker.
        {{50, 50, 50, 50, 20}, {0.23, 0.23, 0.22, 0.23, 0.09}},
        // 3 / 5 * 100 is 60.000004 in single precision, so r = 60 is still MIDI.
        {{3, 0, 2, 0, 0}, {0.61, 0, 0.39, 0, 0}},
        // Tracker has no band of its own and takes every draw as the remainder.
        {{0, 0, 100, 0, 0}, {0, 0, 1, 0, 0}},
    };
    constexpr int draws = 4'000'000;
    for (const auto& [ratios, exact] : cases) {
        PlayerState st;
        fillEveryFamily(st);
        prepare(st, ratios, 11);
        std::array<int, 5> seen{};
        for (int i = 0; i < draws; ++i)
            ++seen.at(pickFamily(st));
        for (int family = 0; family < 5; ++family) {
            double p = exact[family];
            // Five standard deviations: far less than a share's distance from ratio / sum.
            EXPECT_NEAR(seen[family] / double(draws), p, 5 * std::sqrt(p * (1 - p) / draws))
                << "family " << family << " of " << testing::PrintToString(ratios);
        }
    }
}

// The station ratio is held back for the first draw of a run and comes back after it, as it was
// before the very first draw, even when a negative sum left that draw pending.
TEST(FamilyDraw, TheFirstSongOfARunIsNeverAStationAndANegativeSumLeavesTheDrawPending) {
    PlayerState st;
    fillEveryFamily(st);
    prepare(st, {-10, 0, 0, 0, 20}, 17, /*pastFirstPick=*/false);
    EXPECT_EQ(pickFamily(st), familyNone);
    EXPECT_EQ(std::tie(st.firstFamilyPick, st.rawRadio), std::tuple(true, 0));
    setRatios(st, {1, 0, 0, 0, 10000});
    selectNextSong(st);
    EXPECT_EQ(std::tie(st.onStation, st.currentMusicType, st.firstFamilyPick, st.rawRadio),
              std::tuple(false, musicTypeMidi, false, 20));

    // Nor when all ratios are 0: the fallback of the first draw offers no radio.
    for (unsigned seed = 0; seed < 200; ++seed) {
        PlayerState fresh;
        fillEveryFamily(fresh);
        prepare(fresh, {0, 0, 0, 0, 0}, seed, /*pastFirstPick=*/false);
        selectNextSong(fresh);
        ASSERT_FALSE(fresh.onStation) << "seed " << seed;
        EXPECT_EQ(ratiosOf(fresh), (Ratios{50, 1, 1, 0, 0})) << "seed " << seed;
    }
}

TEST(FamilyDraw, RatiosThatLeaveNothingToDrawAreReplacedAndStayInTheSettings) {
    // The ratios, whether there are MIDI songs and music folders, and the ratios they become.
    const std::tuple<const char*, Ratios, bool, bool, Ratios> cases[] = {
        {"all zero", {0, 0, 0, 0, 0}, true, true, {50, 1, 1, 0, 30}},
        {"only an empty family", {100, 0, 0, 0, 0}, false, true, {0, 1, 1, 0, 30}},
        {"negatives that cancel", {-10, 10, 0, 0, 0}, true, true, {50, 1, 1, 0, 30}},
        {"no music folders", {50, 50, 50, 50, 20}, true, false, {1, 0, 0, 0, 25}},
    };
    for (const auto& [why, ratios, withMidi, musicFolders, replaced] : cases) {
        PlayerState st;
        fillEveryFamily(st, withMidi);
        st.hasMusicFolders = musicFolders;
        prepare(st, ratios, 14);
        int family = pickFamily(st);
        EXPECT_EQ(ratiosOf(st), replaced) << why;
        EXPECT_NE(family, familyNone) << why;
        EXPECT_TRUE(withMidi || family != familyMidi) << why;
    }
}

TEST(StationDraw, StationsAndRadioPlaylistsWeighByTheirFavouriteCount) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMp3), song(musicTypeMp3)}, /*iRadioMode=*/1);
    st.playlists[0].songs[1].songPath = "p0s1.MP3"; // typed by the stored, case-kept extension
    addPlaylist(st, {song(musicTypeMp3)});
    addStations(st, {0, 2, -1});
    prepare(st, radioOnly, 41);
    st.historyDepth = -1; // the repeat window does not apply to radio playlists
    constexpr int draws = 20'000;
    std::array<int, 5> seen{}; // the three stations, then the two songs of the radio playlist
    for (int i = 0; i < draws; ++i) {
        SongRef ref = selectNextSong(st);
        if (st.onStation) {
            ++seen.at(ref.plistIndex);
            continue;
        }
        ASSERT_EQ(ref.plistIndex, 0);
        ++seen.at(3 + ref.songIndex);
        EXPECT_EQ(st.currentMusicType, ref.songIndex == 0 ? musicTypeMp3 : musicTypeUnknown);
        EXPECT_EQ(st.songHistory.back(), (HistoryEntry{st.currentMusicType, ref.songIndex, 0}));
    }
    const double shares[] = {0.2, 0.6, 0.0, 0.1, 0.1};
    for (int i : {0, 1, 3, 4})
        EXPECT_NEAR(seen[i] / double(draws), shares[i], 0.015) << i;
    EXPECT_EQ(seen[2], 0); // a negative count stands no times
}

TEST(StationDraw, AStationIsPlayedAndRecordedByItsIndexEvenWithShuffleOff) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMp3), song(musicTypeMp3)});
    addStations(st, {-1, 0});
    prepare(st, radioOnly, 42);
    st.currentMusicType = musicTypeMp3;
    st.shuffle = 0;
    st.modeSongIndex = 0;
    EXPECT_EQ(selectNextSong(st), (SongRef{1, 0}));
    // Nothing was picked before it, so the previous type is the station's too.
    EXPECT_EQ(std::tie(st.onStation, st.currentStation, st.currentMusicType, st.previousMusicType,
                       st.modeSongIndex),
              std::tuple(true, 1, musicTypeStation, musicTypeStation, 0));
    EXPECT_EQ(st.songHistory, (std::vector<HistoryEntry>{{musicTypeStation, 1, 1}}));

    selectNextSong(st);
    EXPECT_EQ(st.previousMusicType, musicTypeStation);
}

TEST(StationDraw, NothingToTuneInGivesTheZeroReferenceAndRecordsNothing) {
    // Whether an empty radio playlist is there, and the station mode.
    const std::tuple<const char*, bool, int> cases[] = {
        {"an empty radio playlist drawn", true, 1},
        {"the same left on from the list page", true, 4},
        {"no entry that stands in the draw", false, 1}};
    for (const auto& [why, emptyRadioPlaylist, stationMode] : cases) {
        PlayerState st;
        addPlaylist(st, {song(musicTypeMp3)});
        if (emptyRadioPlaylist)
            addPlaylist(st, {}, /*iRadioMode=*/1);
        addStations(st, {-1, -3});
        prepare(st, radioOnly, 44);
        st.stationMode = stationMode;
        st.onStation = stationMode == 4;
        st.currentStation = 3; // the radio playlist
        EXPECT_EQ(selectNextSong(st), (SongRef{0, 0})) << why;
        EXPECT_FALSE(st.onStation) << why; // (0, 0) names a song, not station 0
        EXPECT_TRUE(st.songHistory.empty()) << why;
    }
}

TEST(StationMode, StationModeFourStaysOnItsStationOrWithoutStationsPlaysASong) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMidi)});
    addStations(st, {5, 5, 0});
    prepare(st, {50, 0, 0, 0, 0}, 46);
    st.stationMode = 4;
    st.currentStation = 2;
    st.onStation = true;
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(selectNextSong(st), (SongRef{2, 0}));

    st.radioStations.clear();
    prepare(st, {50, 0, 0, 0, 0}, 47);
    EXPECT_EQ(selectNextSong(st), (SongRef{0, 0}));
    EXPECT_FALSE(st.onStation);
    EXPECT_EQ(st.songHistory.back(), (HistoryEntry{musicTypeMidi, 0, 0}));
}

} // namespace
