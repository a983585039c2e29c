#pragma once
#include "playback/fadeWorker.h"

#include <atomic>

// The fade-out workers' clock in tests: it moves only when the test says so.
class ManualClock : public FadeClock {
  public:
    std::int64_t nowMilliseconds() const override { return now_.load(); }
    void advance(std::int64_t milliseconds) { now_ += milliseconds; }

  private:
    std::atomic<std::int64_t> now_{1000};
};
