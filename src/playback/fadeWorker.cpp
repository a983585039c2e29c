#include "playback/fadeWorker.h"

#include "playback/engine/engine.h"
#include "playback/playbackState.h"
#include "playback/slots.h"

#include <algorithm>
#include <chrono>
#include <malloc.h>
#include <thread>

namespace {

void stopAndFree(ChannelHandle handle) {
    channelStop(handle);
    streamFree(handle);
}

// Decided at the end of the sleep, so the worker clears whichever pair is not audible then. A
// field that holds the audible pair's handle (both fields after a start of playback) is left.
void clearSilentPair(PlaybackState& st) {
    std::lock_guard lock(st.streamMutex);
    const Slot silent = loadingSlot(st);
    const Slot audible = silent == Slot::Main ? Slot::Next : Slot::Main;
    for (MusicType type : {musicTypeMidi, musicTypeTracker}) {
        ChannelHandle old = slotChannel(st, silent, type);
        if (old != slotChannel(st, audible, type))
            stopAndFree(old);
    }
}

void runWorker(PlaybackState& st, std::int64_t deadline) {
    {
        std::unique_lock lock(st.fadeSleepLock);
        while (!st.fadeWorkersEnding && playerClockMs(st) < deadline) {
            if (st.fadeClock)
                st.fadeWake.wait(lock);
            else
                st.fadeWake.wait_for(lock, std::chrono::milliseconds(deadline - playerClockMs(st)));
        }
    }
    clearSilentPair(st);
    // A song's decoder did its allocating on threads of its own, whose malloc arenas keep the
    // freed pages: without this, a player left running holds ten more megabytes after a few
    // thousand songs than after a few hundred. Here, off the window's and the device's threads.
    malloc_trim(0);
    st.fadeWorkerRunning = 0;
    std::lock_guard lock(st.fadeSleepLock);
    auto it = std::find(st.fadeDeadlines.begin(), st.fadeDeadlines.end(), deadline);
    if (it != st.fadeDeadlines.end())
        st.fadeDeadlines.erase(it);
    // Still under the lock: once the last deadline is gone endFadeWorkers may return and the
    // state be destroyed, so the worker must not touch it after letting go.
    st.fadeWake.notify_all();
}

bool settled(const PlaybackState& st) {
    std::int64_t t = playerClockMs(st);
    return std::all_of(st.fadeDeadlines.begin(), st.fadeDeadlines.end(),
                       [t](std::int64_t d) { return d > t; });
}

} // namespace

std::int64_t playerClockMs(const PlaybackState& st) {
    if (st.fadeClock)
        return st.fadeClock->nowMilliseconds();
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void startFadeWorker(PlaybackState& st) {
    std::int64_t deadline = playerClockMs(st) + std::max(st.FADE_DURATION_MS, 0);
    {
        std::lock_guard lock(st.fadeSleepLock);
        st.fadeDeadlines.push_back(deadline);
    }
    st.fadeWorkerRunning = 1;
    std::thread([&st, deadline] { runWorker(st, deadline); }).detach();
}

void endFadeWorkers(PlaybackState& st) {
    std::unique_lock lock(st.fadeSleepLock);
    st.fadeWorkersEnding = true;
    st.fadeWake.notify_all();
    st.fadeWake.wait(lock, [&st] { return st.fadeDeadlines.empty(); });
}

void settleFadeWorkers(PlaybackState& st) {
    std::unique_lock lock(st.fadeSleepLock);
    st.fadeWake.notify_all();
    st.fadeWake.wait(lock, [&st] { return settled(st); });
}
