#include "radio/selectionTestSupport.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>

using namespace selectionTest;

namespace {

// Songs of all three families, a favourite and two stations.
void fillEveryFamily(PlayerState& st) {
    addPlaylist(st, {song(musicTypeMidi), song(musicTypeMp3), song(musicTypeTracker),
                     favorite(musicTypeMp3)});
    addStations(st, {0, 0});
    countLibrary(st);
}

} // namespace

TEST(FamilyDraw, SharesFollowTheWholeNumbersOfRThatFallInEachBand) {
    PlayerState st;
    fillEveryFamily(st);
    setRatios(st, 50, 50, 50, 50, 20);
    seedAll(st, 11);
    constexpr int draws = 4'000'000;
    std::array<int, 5> seen{};
    for (int i = 0; i < draws; ++i)
        ++seen.at(pickFamily(st));
    // The cumulative edges are 22.73, 45.45, 68.18 and 77.27: r 0..22 is MIDI, 23..45 MP3,
    // 46..68 Favorites, 69..77 Radio, and 78..99 is left to Tracker.
    const std::array<double, 5> exact{0.23, 0.23, 0.22, 0.23, 0.09};
    const std::array<double, 5> naive{50 / 220.0, 50 / 220.0, 50 / 220.0, 50 / 220.0, 20 / 220.0};
    for (int family = 0; family < 5; ++family) {
        double share = static_cast<double>(seen[family]) / draws;
        double p = exact[family];
        EXPECT_NEAR(share, p, 5 * std::sqrt(p * (1 - p) / draws)) << "family " << family;
        EXPECT_LT(std::abs(share - p), std::abs(share - naive[family])) << "family " << family;
    }
}

TEST(FamilyDraw, PercentagesInSinglePrecisionLetThreeFifthsCoverSixtyOneValuesOfR) {
    PlayerState st;
    fillEveryFamily(st);
    setRatios(st, 3, 0, 2, 0, 0);
    seedAll(st, 20);
    constexpr int draws = 200'000;
    int midi = 0;
    for (int i = 0; i < draws; ++i)
        midi += pickFamily(st) == familyMidi ? 1 : 0;
    // 3 / 5 * 100 is 60.000004 in a float, so r = 60 is still MIDI; exact arithmetic says 0.60.
    EXPECT_NEAR(static_cast<double>(midi) / draws, 0.61, 0.005);
}

TEST(FamilyDraw, TrackerAloneHasNoBandAndTakesEveryDrawAsTheRemainder) {
    PlayerState st;
    fillEveryFamily(st);
    setRatios(st, 0, 0, 100, 0, 0);
    seedAll(st, 12);
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(pickFamily(st), familyTracker);
}

TEST(FamilyDraw, TheFirstSongOfARunIsNeverAStation) {
    PlayerState st;
    fillEveryFamily(st);
    setRatios(st, 1, 0, 0, 0, 10000);
    seedAll(st, 13, /*pastFirstPick=*/false);

    selectNextSong(st);
    EXPECT_FALSE(st.onStation);
    EXPECT_EQ(st.currentMusicType, musicTypeMidi);
    EXPECT_EQ(st.rawRadio, 10000);

    int stations = 0;
    for (int i = 0; i < 20; ++i) {
        selectNextSong(st);
        stations += st.onStation ? 1 : 0;
    }
    EXPECT_GE(stations, 15);
}

TEST(FamilyDraw, AllRatiosZeroFallBackToFixedRatiosThatStayInTheSettings) {
    PlayerState st;
    fillEveryFamily(st);
    setRatios(st, 0, 0, 0, 0, 0);
    seedAll(st, 14);
    pickFamily(st);
    EXPECT_EQ(st.rawMIDI, 50);
    EXPECT_EQ(st.rawMP3, 1);
    EXPECT_EQ(st.rawTracker, 1);
    EXPECT_EQ(st.rawRadio, 30);
    EXPECT_EQ(st.rawFav, 0);
}

TEST(FamilyDraw, TheFallbackOfTheFirstDrawOffersNoRadio) {
    for (unsigned seed = 0; seed < 200; ++seed) {
        PlayerState st;
        fillEveryFamily(st);
        setRatios(st, 0, 0, 0, 0, 0);
        seedAll(st, seed, /*pastFirstPick=*/false);
        selectNextSong(st);
        ASSERT_FALSE(st.onStation) << "seed " << seed;
        EXPECT_EQ(st.rawMIDI, 50);
        EXPECT_EQ(st.rawRadio, 0);
    }
}

TEST(FamilyDraw, ARatioOfAnEmptyFamilyIsClearedAndTheFallbackTakesOver) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMp3), song(musicTypeTracker)});
    addStations(st, {0});
    countLibrary(st);
    setRatios(st, 100, 0, 0, 0, 0);
    seedAll(st, 16);
    int family = pickFamily(st);
    EXPECT_EQ(st.rawMIDI, 0);
    EXPECT_EQ(st.rawMP3, 1);
    EXPECT_EQ(st.rawTracker, 1);
    EXPECT_EQ(st.rawRadio, 30);
    EXPECT_NE(family, familyMidi);
}

TEST(FamilyDraw, ANegativeSumStopsWithNoFamilyAndLeavesTheFirstDrawPending) {
    PlayerState st;
    fillEveryFamily(st);
    setRatios(st, -10, 0, 0, 0, 20);
    seedAll(st, 17, /*pastFirstPick=*/false);
    EXPECT_EQ(pickFamily(st), familyNone);
    EXPECT_TRUE(st.firstFamilyPick);
    EXPECT_EQ(st.rawRadio, 0);

    // The saved ratio is the one from before the very first draw, not the 0 left behind.
    setRatios(st, 10, 0, 0, 0, 0);
    pickFamily(st);
    EXPECT_FALSE(st.firstFamilyPick);
    EXPECT_EQ(st.rawRadio, 20);
}

TEST(FamilyDraw, NegativeRatiosThatCancelToZeroTakeTheFallback) {
    PlayerState st;
    fillEveryFamily(st);
    setRatios(st, -10, 10, 0, 0, 0);
    seedAll(st, 18);
    EXPECT_NE(pickFamily(st), familyNone);
    EXPECT_EQ(st.rawMIDI, 50);
    EXPECT_EQ(st.rawMP3, 1);
}

TEST(FamilyDraw, WithoutMusicFoldersOnlyMidiAndStationsAreOffered) {
    PlayerState st;
    fillEveryFamily(st);
    setRatios(st, 50, 50, 50, 50, 20);
    st.hasMusicFolders = false;
    seedAll(st, 19);
    pickFamily(st);
    EXPECT_EQ(st.rawMIDI, 1);
    EXPECT_EQ(st.rawMP3 + st.rawTracker + st.rawFav, 0);
    EXPECT_EQ(st.rawRadio, 25);
}
