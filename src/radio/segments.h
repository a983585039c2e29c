#pragma once
#include "playback/engine/handle.h"

#include <algorithm>

struct RadioState;

// Where a just-started song begins and when its transition is due, given its length, the
// settings and the random draws (each u in 0..1). Pure, so the rules can be tested alone.
struct SegmentInput {
    double lengthSeconds = 0.0;
    bool streamRules = true; // the short-song rule applies to streams, not to modules
    bool wholeSong = false;  // segments off, or walking the history
    int minSeconds = 45;
    int maxSeconds = 110;
    double fadeSeconds = 8.0;
};
struct Segment {
    double start = 0.0;
    double end = 0.0;
    bool seek = false; // start was drawn, so the channel moves there
};
template <typename Draw> Segment chooseSegment(const SegmentInput& in, Draw&& nextU);

// For a song or station just started in the music pair, and for a module in the tracker pair.
// Set segmentStart and segmentEnd and move the channel to segmentStart.
void setStreamSegment(RadioState& st, ChannelHandle handle);
void setTrackerSegment(RadioState& st, ChannelHandle handle);
// The audible channel's position and length, read at every repaint; -1.0 when it failed.
void refreshPosition(RadioState& st);
// Whether the next transition is due now.
bool segmentEndDue(const RadioState& st);
// After a load: a station or a song that failed in a radio mode (not a chosen playlist or
// station) makes the radio move on after loadRetryDelayMs, so that a dead address in the list or
// a song file deleted since the scan cannot silence a radio that runs unattended. Any other load
// clears the wait.
constexpr std::int64_t loadRetryDelayMs = 3000;
void armLoadRetry(RadioState& st, ChannelHandle handle);
// A station whose stream ended while it played in a radio mode: its position stands still, so
// the radio moves on by the clock when the segment would have ended.
void noteStationEnd(RadioState& st);
// True once, when the wait of a failed load or an ended station is over.
bool loadRetryDue(RadioState& st);

template <typename Draw> Segment chooseSegment(const SegmentInput& in, Draw&& nextU) {
    const double length = in.lengthSeconds;
    const double fade = in.fadeSeconds;
    Segment segment;
    double d = 0.0;
    if (in.streamRules && length < 30.0) {
        d = length - 2.0;
    } else if (in.wholeSong) {
        d = length - fade;
    } else {
        double floor = std::max(static_cast<double>(in.minSeconds), 3.0);
        segment.start = nextU() * (length - floor);
        segment.seek = true;
        if (fade >= length - segment.start) {
            d = length - segment.start - fade;
        } else {
            double end = in.minSeconds + nextU() * (in.maxSeconds - in.minSeconds) + segment.start;
            if (end > length)
                end = length - fade;
            d = end - segment.start;
        }
    }
    if (length < 2.0)
        d = std::max(0.0, length - fade);
    segment.end = segment.start + d;
    return segment;
}
