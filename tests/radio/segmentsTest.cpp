#include "radio/segments.h"

#include "core/playerState.h"

#include <gtest/gtest.h>
#include <tuple>
#include <vector>

namespace {

// Draws u from a list, in order, as the 15-bit generator would hand them out.
Segment segmentFor(SegmentInput in, std::vector<double> us) {
    std::size_t next = 0;
    return chooseSegment(in, [&] { return us.at(next++); });
}

TEST(SegmentRules, StartAndEndFollowTheLengthTheSettingsAndTheDraws) {
    // The input (length, stream rules, whole song, minimum, maximum, fade), the draws in order
    // (none for a rule that draws nothing) and the segment wanted.
    const std::tuple<const char*, SegmentInput, std::vector<double>, Segment> cases[] = {
        {"the earliest start", {240}, {0.0, 1.0}, {0.0, 110.0, true}},
        {"the latest start", {240}, {1.0, 0.0}, {195.0, 240.0, true}},
        // A start past 187 s runs the segment up to the fade that ends with the song.
        {"a late start", {240}, {190.0 / 195.0, 1.0}, {190.0, 232.0, true}},
        // A tiny minimum still keeps the start three seconds from the end.
        {"a tiny minimum", {240, true, false, 1, 2, 0.0}, {1.0, 0.0}, {237.0, 238.0, true}},
        // The length is counted from the negative start: 45 s after it, the song's end.
        {"shorter than the shortest segment", {40}, {1, 0}, {-5.0, 40.0, true}},
        {"segments off, or walking back", {200, true, true}, {}, {0.0, 192.0, false}},
        {"a stream under 30 s plays to 2 s before its end", {20}, {}, {0.0, 18.0, false}},
        {"a module of 20 s takes the segment rule", {20, false}, {0, 0}, {0.0, 12.0, true}},
        {"a very short stream", {1.5}, {}, {0.0, 0.0, false}},
        {"a failed channel reads as -1 s", {-1.0}, {}, {0.0, 0.0, false}},
    };
    for (const auto& [why, in, us, want] : cases) {
        Segment s = segmentFor(in, us);
        EXPECT_DOUBLE_EQ(s.start, want.start) << why;
        EXPECT_DOUBLE_EQ(s.end, want.end) << why;
        EXPECT_EQ(s.seek, want.seek) << why;
    }
    // Settings in either order: the length is drawn between them.
    for (double u : {0.0, 0.5, 1.0}) {
        Segment s = segmentFor({.lengthSeconds = 240, .minSeconds = 100, .maxSeconds = 50}, {0, u});
        EXPECT_GE(s.end - s.start, 50.0);
        EXPECT_LE(s.end - s.start, 100.0);
    }
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

TEST(SegmentEnd, IsDueInItsWindowsOnlyAndAStationEndFollowsTheMode) {
    struct Case {
        const char* why;
        double position, segmentEnd, length;
        bool due;
        int songs = 10, fading = 0, walking = 0;
        int stationMode = -1; // on a station in this mode
    };
    const Case cases[] = {
        {"more than a second before", 98.9, 100, 300, false},
        {"just under a second before", 99.01, 100, 300, true},
        {"just under three seconds after", 102.99, 100, 300, true},
        {"three seconds after", 103.0, 100, 300, false},
        {"a segment end jumped over, a minute on", 160.5, 100, 300, true},
        {"the first five seconds never end a song", 5.9, 5.5, 300, false},
        {"the true end", 180.2, 400, 180.9, true},
        {"a failed channel", -1.0, 0.0, -1.0, false},
        {"both at once: one transition", 60.5, 60.0, 60.9, true},
        {"during a fade", 99.5, 100, 100.2, false, 10, 1},
        {"without songs", 99.5, 100, 100.2, false, 0},
        {"the segment end in a walk", 99.5, 100, 100.2, false, 10, 0, 1},
        {"the true end in a walk", 100.1, 100, 100.2, true, 10, 0, 1},
        {"a station, mode 1", 130, 100, 0, true, 0, 0, 0, 1},
        {"a station, mode 2", 130, 100, 0, true, 0, 0, 0, 2},
        {"a station, mode 3", 130, 100, 0, true, 0, 0, 0, 3},
        {"mode 3 waits while walking the history", 130, 100, 0, false, 0, 0, 1, 3},
        {"mode 3: not in the first 30 s", 25, 20, 0, false, 0, 0, 0, 3},
        {"a minute and more past the end", 161, 100, 0, false, 0, 0, 0, 1},
        {"a station chosen in mode 0", 100, 100, 0, false, 0, 0, 0, 0},
        {"a station chosen in mode 4", 100, 100, 0, false, 0, 0, 0, 4},
    };
    for (const Case& c : cases) {
        PlayerState st;
        std::tie(st.positionSeconds, st.segmentEnd, st.lengthSeconds, st.totalSongCount,
                 st.fadeWorkerRunning, st.historyNavigation) =
            std::tuple(c.position, c.segmentEnd, c.length, c.songs, c.fading, c.walking);
        if (c.stationMode >= 0)
            std::tie(st.onStation, st.stationMode) = std::tuple(true, c.stationMode);
        EXPECT_EQ(segmentEndDue(st), c.due) << c.why;
    }
}

} // namespace
