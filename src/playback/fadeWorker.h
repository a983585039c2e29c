#pragma once
#include <cstdint>

struct PlaybackState;

// The time the fade-out workers sleep by: the steady clock in the program, a clock that a test
// moves on with the frames it pulls, so that crossfade tests never sleep.
class FadeClock {
  public:
    virtual ~FadeClock() = default;
    virtual std::int64_t nowMilliseconds() const = 0;
};

// Milliseconds on the player's clock: fadeClock when a test set one, else the steady clock.
std::int64_t playerClockMs(const PlaybackState& st);

// Starts a detached worker that sleeps FADE_DURATION_MS, then stops and frees the pair that is
// not audible and clears fadeWorkerRunning. The flag is set here, before the thread runs.
void startFadeWorker(PlaybackState& st);
// At exit: every worker clears its pair at once, and this returns when the last has ended, so
// none outlives the state it works on.
void endFadeWorkers(PlaybackState& st);
// For tests: returns once every worker whose time has come has ended.
void settleFadeWorkers(PlaybackState& st);
