#pragma once
#include "playback/engine/decoder.h"
#include "playback/engine/handle.h"
#include "playback/engine/ringBuffer.h"

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// A volume that moves linearly from `from` to `to` over `frames` played frames, starting when the
// channel had played `start` frames. A plain set is a slide of no frames.
struct VolumeRamp {
    float from = 1.0f;
    float to = 1.0f;
    std::uint64_t start = 0;
    std::uint64_t frames = 0;

    float at(std::uint64_t played) const {
        if (played >= start + frames)
            return to;
        if (played <= start)
            return from;
        double t = static_cast<double>(played - start) / static_cast<double>(frames);
        return static_cast<float>(from + (to - from) * t);
    }
};

// The ramp as the mixer reads it while the user-interface thread may replace it: a sequence lock,
// so the reader never waits and never sees half of a ramp.
class SharedRamp {
  public:
    void store(const VolumeRamp& ramp); // writers are serialised by the channel's control lock
    VolumeRamp load() const;

  private:
    std::atomic<std::uint32_t> sequence_{0};
    std::atomic<float> from_{1.0f};
    std::atomic<float> to_{1.0f};
    std::atomic<std::uint64_t> start_{0};
    std::atomic<std::uint64_t> frames_{0};
};

// Where the source position jumps when the mixer reaches a frame of the ring: a looping file
// wraps to 0 there.
struct PositionMark {
    std::uint64_t ringIndex = 0;
    std::uint64_t position = 0;
};

// One playing thing: its decoder on a decode thread of its own, the ring the mixer reads, and the
// figures both sides share.
struct Channel {
    // path names the file in the one log line of a stream that cannot loop.
    Channel(std::unique_ptr<Decoder> source, bool loops, std::string path);
    ~Channel(); // stops and joins the decode thread
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    // Set by the control side, read by the mixer; the mixer itself moves Playing to Stopped when a
    // module has played its last frame.
    std::atomic<int> state{0};
    FrameRing ring{32768};
    SharedRamp volume;
    std::atomic<std::uint64_t> played{0};   // frames mixed since creation: the clock of slides
    std::atomic<std::uint64_t> position{0}; // source position heard, in 44100 Hz frames
    std::atomic<int> underruns{0};
    std::array<PositionMark, 8> marks{};
    std::atomic<std::uint32_t> marksWritten{0};
    std::atomic<std::uint32_t> marksRead{0};
    std::atomic<bool> ended{false}; // the decoder wrote its last frame at endIndex
    std::atomic<std::uint64_t> endIndex{0};

    // The decoder and what describes it; decoderLock is held for every call on the decoder.
    std::mutex decoderLock;
    std::unique_ptr<Decoder> decoder;
    MidiDecoder* midi = nullptr;
    const bool loops;
    const std::uint64_t lengthFrames;
    const int sourceRate;
    const int sourceChannels;
    const std::string path;
    std::vector<FontHandle> fonts; // as set through the engine, for get-fonts

    // Under decoderLock and the output lock: the decoder is at frame, the ring is empty.
    void restartAt(std::uint64_t frame);
    // Decoded frames ready to mix, including the end of a module.
    bool hasPrefill(std::size_t frames) const;
    // Any thread but the mixer, holding no lock that the mixer or the decode thread needs: false
    // when the deadline came first.
    bool waitForPrefill(std::size_t frames, std::chrono::steady_clock::time_point deadline);

    // Wakes the decode thread for work that the control side gave it.
    void wakeDecoder();
    // The mixer, after it took frames: wakes the decode thread once there is room for a refill.
    // Lock-free: an atomic add, and a futex wake only when the decode thread sleeps.
    void noteFramesTaken();

  private:
    void decodeLoop();
    bool fillLocked(); // one chunk under decoderLock; false when there was nothing to do
    bool loopLocked();
    void endLocked();
    void signalProgress();

    std::vector<float> scratch_;
    // Under decoderLock: where the decoder's current pass began and the frames it gave since, so
    // that a pass from the beginning that gives nothing ends the stream instead of spinning.
    std::uint64_t passStart_ = 0;
    std::uint64_t passFrames_ = 0;
    std::atomic<bool> quit_{false};
    // The decode thread sleeps on wake_ (std::atomic::wait), so that the mixer can wake it
    // without a lock; asleep_ spares the mixer the wake-up call while it works.
    std::atomic<std::uint32_t> wake_{0};
    std::atomic<bool> asleep_{false};
    // Waiters for decoded audio (play, the null output) sleep here; the decode thread signals
    // after every chunk and at the end.
    std::mutex progressLock_;
    std::condition_variable progress_;
    std::thread thread_;
};
