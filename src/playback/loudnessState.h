#pragma once
#include "library/records.h"
#include "playback/engine/handle.h"
#include "playback/loudnessCache.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

// A song for the measuring thread. A MIDI song of the sweep has no font: it is measured through
// the font the radio gave its last MIDI song.
struct LoudnessJob {
    std::string songPath;
    std::string fontPath;
    MusicType family = musicTypeUnknown;
};

// The loudness levelling: the switch, and the measuring thread with what it shares with the
// user-interface thread, each under `lock` unless it says otherwise.
struct LoudnessState {
    LoudnessState() = default;
    LoudnessState(const LoudnessState&) = delete;
    LoudnessState& operator=(const LoudnessState&) = delete;
    // A state that goes without the shutdown's end of the thread (a test, an early exit) still
    // ends it, abandoning its song and saving nothing.
    ~LoudnessState();

    // --- The user-interface thread's alone.
    // The thread runs at idle priority; a test that waits for its values asks for normal.
    bool idlePriority = true;

    // --- Shared. The thread alone writes `values`, under the lock; it reads them without.
    std::atomic<bool> enabled{true}; // written by the user-interface thread alone
    std::mutex lock;
    std::condition_variable wake;
    std::string cachePath;
    LoudnessTable values;
    bool cacheLoaded = false;       // the thread read the file: values before that are none
    std::vector<LoudnessJob> sweep; // the library, measured in its order
    std::size_t sweepNext = 0;
    std::string sweepFont;
    // The song on air: measured first, and its channel moved to its value when that arrives.
    std::optional<LoudnessJob> onAir;
    ChannelHandle onAirHandle = 0;
    bool onAirLevelled = false; // its gain is its own measured value already
    bool onAirPending = false;  // to be measured first (taken once, even when it fails)
    bool measuring = false;     // a song is being measured now
    bool quit = false;
    std::atomic<bool> stop{false}; // abandons the measurement in progress
    std::thread worker;
};
