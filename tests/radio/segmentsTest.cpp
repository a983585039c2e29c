#include "radio/segments.h"

#include "core/playerState.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

// Draws u from a list, in order, as the 15-bit generator would hand them out.
Segment segmentFor(SegmentInput in, std::vector<double> us) {
    std::size_t next = 0;
    return chooseSegment(in, [&] { return us.at(next++); });
}

SegmentInput song(double length) {
    SegmentInput in;
    in.lengthSeconds = length;
    return in;
}

TEST(SegmentRules, ADefaultSongStartsAnywhereAndEndsItsFadeWithTheSong) {
    Segment early = segmentFor(song(240), {0.0, 1.0});
    EXPECT_EQ(early.start, 0.0);
    EXPECT_EQ(early.end, 110.0);
    EXPECT_TRUE(early.seek);
    Segment latest = segmentFor(song(240), {1.0, 0.0});
    EXPECT_EQ(latest.start, 195.0);
    // A start past 187 s runs the segment up to the fade that ends with the song.
    Segment late = segmentFor(song(240), {190.0 / 195.0, 1.0});
    EXPECT_NEAR(late.start, 190.0, 1e-9);
    EXPECT_DOUBLE_EQ(late.end, 232.0);
}

TEST(SegmentRules, SettingsInEitherOrderAndTinyMinimumsKeepTheStartThreeSecondsFromTheEnd) {
    SegmentInput reversed = song(240);
    reversed.minSeconds = 100;
    reversed.maxSeconds = 50;
    for (double u : {0.0, 0.5, 1.0}) {
        Segment s = segmentFor(reversed, {0.0, u});
        EXPECT_GE(s.end - s.start, 50.0);
        EXPECT_LE(s.end - s.start, 100.0);
    }
    SegmentInput tiny = song(240);
    tiny.minSeconds = 1;
    tiny.maxSeconds = 2;
    tiny.fadeSeconds = 0.0;
    Segment s = segmentFor(tiny, {1.0, 0.0});
    EXPECT_EQ(s.start, 237.0);
    EXPECT_EQ(s.end - s.start, 1.0);
}

TEST(SegmentRules, WholeSongsShortStreamsAndVeryShortOnesSkipTheDraw) {
    SegmentInput whole = song(200);
    whole.wholeSong = true; // segments off, or walking the history
    EXPECT_EQ(segmentFor(whole, {}).end, 192.0);
    // A stream under 30 s plays to 2 s before its end; a module of 20 s takes the segment rule.
    EXPECT_EQ(segmentFor(song(20), {}).end, 18.0);
    SegmentInput tracker = song(20);
    tracker.streamRules = false;
    EXPECT_TRUE(segmentFor(tracker, {0.0, 0.0}).seek);
    Segment tiny = segmentFor(song(1.5), {});
    EXPECT_EQ(tiny.end, 0.0);
    EXPECT_FALSE(tiny.seek);
    // A failed channel reads as -1 s: nothing is drawn and the segment ends at 0.
    EXPECT_EQ(segmentFor(song(-1.0), {}).end, 0.0);
}

TEST(SegmentRules, ASongShorterThanTheShortestSegmentGetsANegativeStart) {
    Segment s = segmentFor(song(40), {1.0, 0.0});
    EXPECT_EQ(s.start, -5.0);
    // The length is counted from the negative start: 45 s after it, which is the song's end.
    EXPECT_EQ(s.end, 40.0);
}

TEST(StationTime, IsDrawnBetweenTheTwoSettingsInEitherOrder) {
    PlayerState st;
    st.onStation = true;
    st.iSongPlayDurationMin = 200;
    st.iSongPlayDurationMax = 100;
    for (int i = 0; i < 200; ++i) {
        setStreamSegment(st, 0);
        EXPECT_EQ(st.segmentStart, 0.0);
        EXPECT_GE(st.segmentEnd, 100.0);
        EXPECT_LE(st.segmentEnd, 200.0);
    }
}

struct EndCase {
    double position;
    double segmentEnd;
    double length;
    bool due;
};

class SongEnd : public testing::TestWithParam<EndCase> {};

TEST_P(SongEnd, IsDueInItsWindowsOnly) {
    PlayerState st;
    st.totalSongCount = 10;
    st.positionSeconds = GetParam().position;
    st.segmentEnd = GetParam().segmentEnd;
    st.lengthSeconds = GetParam().length;
    EXPECT_EQ(segmentEndDue(st), GetParam().due);
}

INSTANTIATE_TEST_SUITE_P(
    Windows, SongEnd,
    testing::Values(EndCase{98.9, 100, 300, false},    // more than a second before
                    EndCase{99.01, 100, 300, true},    // just under a second before
                    EndCase{102.99, 100, 300, true},   // just under three seconds after
                    EndCase{103.0, 100, 300, false},   // three seconds after
                    EndCase{160.5, 100, 300, true},    // a segment end jumped over, a minute on
                    EndCase{5.9, 5.5, 300, false},     // the first five seconds never end a song
                    EndCase{180.2, 400, 180.9, true},  // the true end
                    EndCase{-1.0, 0.0, -1.0, false},   // a failed channel
                    EndCase{60.5, 60.0, 60.9, true})); // both at once: one transition

TEST(SongEndOutsideTheWindows, NeverDuringAFadeOrWithoutSongsAndTheTrueEndHoldsInAWalk) {
    PlayerState st;
    st.totalSongCount = 10;
    st.positionSeconds = 99.5;
    st.segmentEnd = 100;
    st.lengthSeconds = 100.2;
    st.fadeWorkerRunning = 1;
    EXPECT_FALSE(segmentEndDue(st));
    st.fadeWorkerRunning = 0;
    st.totalSongCount = 0;
    EXPECT_FALSE(segmentEndDue(st));
    st.totalSongCount = 10;
    st.historyNavigation = 1;
    EXPECT_FALSE(segmentEndDue(st));
    st.positionSeconds = 100.1;
    EXPECT_TRUE(segmentEndDue(st));
}

TEST(StationEnd, FollowsTheModeAndNeverLeavesAChosenStation) {
    PlayerState st;
    st.onStation = true;
    st.segmentEnd = 100;
    st.positionSeconds = 130; // R = -30
    for (int mode : {1, 2, 3}) {
        st.stationMode = mode;
        EXPECT_TRUE(segmentEndDue(st)) << mode;
    }
    st.historyNavigation = 1;
    EXPECT_FALSE(segmentEndDue(st)); // mode 3 waits while walking the history
    st.historyNavigation = 0;
    st.positionSeconds = 25;
    st.segmentEnd = 20;
    EXPECT_FALSE(segmentEndDue(st)); // mode 3: not in the first 30 s
    st.positionSeconds = 161;
    st.segmentEnd = 100;
    st.stationMode = 1;
    EXPECT_FALSE(segmentEndDue(st)); // R = -61
    for (int mode : {0, 4}) {
        st.stationMode = mode;
        st.positionSeconds = 100;
        EXPECT_FALSE(segmentEndDue(st)) << mode;
    }
}

} // namespace
