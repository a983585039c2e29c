#pragma once
#include "playback/engine/engineError.h"

#include <memory>

struct MixerTable;

// Where the mix goes. While the output is locked the mixer does not run, so channels can be put
// into and taken out of its table, and a seek can empty a ring.
class Output {
  public:
    virtual ~Output() = default;
    virtual void lock() = 0;
    virtual void unlock() = 0;
    // The null output is pulled by its caller; a device pulls by itself.
    virtual bool pullable() const = 0;
    // A channel is about to play: a device that rests while nothing plays starts again. Not from
    // the mixer; never with the output locked.
    virtual void wake() = 0;
};

class OutputLock {
  public:
    explicit OutputLock(Output& output) : output_(output) { output_.lock(); }
    ~OutputLock() { output_.unlock(); }
    OutputLock(const OutputLock&) = delete;
    OutputLock& operator=(const OutputLock&) = delete;

  private:
    Output& output_;
};

std::unique_ptr<Output> openNullOutput();
// The default SDL device at 44100 Hz stereo float, mixing table in its callback. It is paused
// while no channel plays, so that an idle engine costs nothing, and wakes on the next play. Null
// and an error (and one log line) when there is no device. A device lost while it plays gives one
// log line and the default device is opened again, at once and every 3 s while a channel plays;
// the channels keep their places meanwhile.
std::unique_ptr<Output> openDeviceOutput(MixerTable& table, EngineError& error);
