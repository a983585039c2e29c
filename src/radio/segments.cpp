#include "radio/segments.h"

#include "library/model.h"
#include "playback/engine/engine.h"
#include "playback/fadeWorker.h"
#include "playback/slots.h"
#include "radio/radioState.h"
#include "util/log.h"

namespace {

double lengthOf(ChannelHandle handle) {
    return channelBytesToSeconds(handle, channelGetLength(handle));
}

void applySegment(RadioState& st, ChannelHandle handle, bool streamRules) {
    SegmentInput in;
    in.lengthSeconds = lengthOf(handle);
    in.streamRules = streamRules;
    in.wholeSong = st.songPlayDurationMax <= 0 || st.historyNavigation == historyWalkForward;
    in.minSeconds = st.songPlayDurationMin;
    in.maxSeconds = st.songPlayDurationMax;
    in.fadeSeconds = st.FADE_DURATION_MS / 1000.0;
    Segment segment = chooseSegment(in, [&st] { return st.rand15.next() / 32767.0; });
    // A start below 0 (a song shorter than the shortest segment) is refused by the engine and
    // the song plays from its beginning.
    if (segment.seek)
        channelSetPosition(handle, channelSecondsToBytes(handle, segment.start));
    st.segmentStart = segment.start;
    st.segmentEnd = segment.end;
}

// Whole seconds, truncated towards zero, as the end test counts them.
long long wholeSeconds(double seconds) {
    return static_cast<long long>(seconds);
}

// The three radio modes move on by themselves; in one playlist or one station the user decides.
bool inRadioMode(const RadioState& st) {
    return st.stationMode == stationModeRadio || st.stationMode == stationModeTop40 ||
           st.stationMode == stationModeUndiscovered;
}

bool stationEndDue(const RadioState& st, long long p, long long r) {
    if (!inRadioMode(st) || r < -59 || r > 0)
        return false;
    return st.stationMode != stationModeUndiscovered ||
           (st.historyNavigation == historyWalkOff && p > 30);
}

} // namespace

void setStreamSegment(RadioState& st, ChannelHandle handle) {
    if (st.onStation) {
        int low = std::min(st.iSongPlayDurationMin, st.iSongPlayDurationMax);
        int high = std::max(st.iSongPlayDurationMin, st.iSongPlayDurationMax);
        st.segmentStart = 0.0;
        st.segmentEnd = st.stationTimeRng.uniform(low, high);
        return;
    }
    applySegment(st, handle, true);
}

void setTrackerSegment(RadioState& st, ChannelHandle handle) {
    applySegment(st, handle, false);
}

void refreshPosition(RadioState& st) {
    st.activeHandle = audibleHandle(st);
    st.positionBytes = channelGetPosition(st.activeHandle);
    st.lengthBytes = channelGetLength(st.activeHandle);
    st.positionSeconds = channelBytesToSeconds(st.activeHandle, st.positionBytes);
    st.lengthSeconds = channelBytesToSeconds(st.activeHandle, st.lengthBytes);
}

bool segmentEndDue(const RadioState& st) {
    if (st.fadeWorkerRunning.load() != 0)
        return false;
    const long long p = wholeSeconds(st.positionSeconds);
    const long long r = wholeSeconds(st.segmentEnd - st.positionSeconds);
    const long long n = wholeSeconds(st.lengthSeconds);
    if (st.onStation)
        return stationEndDue(st, p, r);
    if (st.totalSongCount <= 0)
        return false;
    // Both tests can hold in one pass; either starts the one transition.
    bool segmentOver = st.historyNavigation == historyWalkOff && p > 5 && r / 60 <= 0 &&
                       r % 60 >= -2 && r % 60 <= 0;
    bool songOver = p >= n && p != -1;
    return segmentOver || songOver;
}

void armLoadRetry(RadioState& st, ChannelHandle handle) {
    const Song* song = st.onStation ? nullptr : findSong(st, {st.playingPlaylist, st.playingSong});
    // Without audio every load fails alike, and moving on would only count plays.
    if (handle != 0 || !inRadioMode(st) || !engineIsInitialized() || (!st.onStation && !song)) {
        st.loadRetryAtMs = -1;
        return;
    }
    st.loadRetryAtMs = playerClockMs(st) + loadRetryDelayMs;
    const long long seconds = loadRetryDelayMs / 1000;
    if (song) {
        logOut("Song %s did not load: the radio moves on in %lld seconds.\n",
               song->songPath.c_str(), seconds);
        return;
    }
    const bool known =
        st.currentStation >= 0 && st.currentStation < static_cast<int>(st.radioStations.size());
    logOut("Station %s did not load: the radio moves on in %lld seconds.\n",
           known ? st.radioStations[st.currentStation].url.c_str() : "(none)", seconds);
}

void noteStationEnd(RadioState& st) {
    if (!st.onStation || !inRadioMode(st) || st.loadRetryAtMs >= 0 || st.activeHandle == 0 ||
        channelIsActive(st.activeHandle) != ChannelState::Stopped)
        return;
    const double left = std::max(0.0, st.segmentEnd - st.positionSeconds);
    st.loadRetryAtMs = playerClockMs(st) + static_cast<std::int64_t>(left * 1000.0);
    logOut("The station has ended: the radio moves on at the end of its segment, in %.0f "
           "seconds.\n",
           left);
}

bool loadRetryDue(RadioState& st) {
    if (st.loadRetryAtMs < 0 || playerClockMs(st) < st.loadRetryAtMs)
        return false;
    st.loadRetryAtMs = -1;
    return true;
}
