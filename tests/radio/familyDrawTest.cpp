#include "radio/selectionTestSupport.h"

#include <cmath>
#include <gtest/gtest.h>

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

} // namespace

TEST(FamilyDraw, SharesFollowTheWholeNumbersOfRThatFallInEachBand) {
    struct Case {
        Ratios ratios;
        std::array<double, 5> exact;
    };
    const Case cases[] = {
        // The cumulative edges are 22.73, 45.45, 68.18 and 77.27: r 0..22 is MIDI, 23..45 MP3,
        // 46..68 Favorites, 69..77 Radio, and 78..99 is left to Tracker.
        {{50, 50, 50, 50, 20}, {0.23, 0.23, 0.22, 0.23, 0.09}},
        // 3 / 5 * 100 is 60.000004 in single precision, so r = 60 is still MIDI.
        {{3, 0, 2, 0, 0}, {0.61, 0, 0.39, 0, 0}},
        // Tracker has no band of its own and takes every draw as the remainder.
        {{0, 0, 100, 0, 0}, {0, 0, 1, 0, 0}},
    };
    constexpr int draws = 4'000'000;
    for (const Case& c : cases) {
        PlayerState st;
        fillEveryFamily(st);
        prepare(st, c.ratios, 11);
        std::array<int, 5> seen{};
        for (int i = 0; i < draws; ++i)
            ++seen.at(pickFamily(st));
        int sum = c.ratios[0] + c.ratios[1] + c.ratios[2] + c.ratios[3] + c.ratios[4];
        for (int family = 0; family < 5; ++family) {
            double share = static_cast<double>(seen[family]) / draws;
            double p = c.exact[family];
            // Five standard deviations: far less than a share's distance from ratio / sum.
            EXPECT_NEAR(share, p, 5 * std::sqrt(p * (1 - p) / draws))
                << "ratio " << c.ratios[family] << " of " << sum;
        }
    }
}

TEST(FamilyDraw, TheFirstSongOfARunIsNeverAStation) {
    PlayerState st;
    fillEveryFamily(st);
    prepare(st, {1, 0, 0, 0, 10000}, 13, /*pastFirstPick=*/false);
    selectNextSong(st);
    EXPECT_FALSE(st.onStation);
    EXPECT_EQ(st.currentMusicType, musicTypeMidi);
    EXPECT_EQ(st.rawRadio, 10000); // held back for the draws after the first

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
    struct Case {
        const char* why;
        Ratios ratios;
        bool withMidi;
        bool musicFolders;
        Ratios replaced;
    };
    const Case cases[] = {
        {"all zero", {0, 0, 0, 0, 0}, true, true, {50, 1, 1, 0, 30}},
        {"only an empty family", {100, 0, 0, 0, 0}, false, true, {0, 1, 1, 0, 30}},
        {"negatives that cancel", {-10, 10, 0, 0, 0}, true, true, {50, 1, 1, 0, 30}},
        {"no music folders", {50, 50, 50, 50, 20}, true, false, {1, 0, 0, 0, 25}},
    };
    for (const Case& c : cases) {
        PlayerState st;
        fillEveryFamily(st, c.withMidi);
        st.hasMusicFolders = c.musicFolders;
        prepare(st, c.ratios, 14);
        int family = pickFamily(st);
        EXPECT_EQ(ratiosOf(st), c.replaced) << c.why;
        EXPECT_NE(family, familyNone) << c.why;
        EXPECT_TRUE(c.withMidi || family != familyMidi) << c.why;
    }
}

TEST(FamilyDraw, ANegativeSumStopsWithNoFamilyAndLeavesTheFirstDrawPending) {
    PlayerState st;
    fillEveryFamily(st);
    prepare(st, {-10, 0, 0, 0, 20}, 17, /*pastFirstPick=*/false);
    EXPECT_EQ(pickFamily(st), familyNone);
    EXPECT_TRUE(st.firstFamilyPick);
    EXPECT_EQ(st.rawRadio, 0);

    // The saved ratio is the one from before the very first draw, not the 0 left behind.
    setRatios(st, {10, 0, 0, 0, 0});
    pickFamily(st);
    EXPECT_FALSE(st.firstFamilyPick);
    EXPECT_EQ(st.rawRadio, 20);
}
