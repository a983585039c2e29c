#include "playback/engine/channel.h"

#include <chrono>

namespace {
// Frames a decode thread renders at a time: small enough to keep the lock short, large enough
// that the decoders work in efficient blocks.
constexpr std::size_t chunkFrames = 1024;
} // namespace

void SharedRamp::store(const VolumeRamp& ramp) {
    sequence_.fetch_add(1, std::memory_order_acq_rel); // odd: a write is under way
    from_.store(ramp.from, std::memory_order_relaxed);
    to_.store(ramp.to, std::memory_order_relaxed);
    start_.store(ramp.start, std::memory_order_relaxed);
    frames_.store(ramp.frames, std::memory_order_relaxed);
    sequence_.fetch_add(1, std::memory_order_release);
}

VolumeRamp SharedRamp::load() const {
    for (;;) {
        std::uint32_t before = sequence_.load(std::memory_order_acquire);
        VolumeRamp ramp{from_.load(std::memory_order_relaxed), to_.load(std::memory_order_relaxed),
                        start_.load(std::memory_order_relaxed),
                        frames_.load(std::memory_order_relaxed)};
        std::atomic_thread_fence(std::memory_order_acquire);
        if (before % 2 == 0 && sequence_.load(std::memory_order_relaxed) == before)
            return ramp;
    }
}

Channel::Channel(std::unique_ptr<Decoder> source, bool loopsAtEnd)
    : decoder(std::move(source)), loops(loopsAtEnd), lengthFrames(decoder->lengthFrames()),
      sourceRate(decoder->sourceRate()), sourceChannels(decoder->sourceChannels()),
      scratch_(chunkFrames * 2) {
    midi = dynamic_cast<MidiDecoder*>(decoder.get());
    thread_ = std::thread([this] { decodeLoop(); });
}

Channel::~Channel() {
    quit_.store(true, std::memory_order_release);
    if (thread_.joinable())
        thread_.join();
}

void Channel::restartAt(std::uint64_t frame) {
    ring.clear();
    marksRead.store(marksWritten.load(std::memory_order_relaxed), std::memory_order_release);
    ended.store(false, std::memory_order_release);
    position.store(frame, std::memory_order_release);
}

bool Channel::hasPrefill(std::size_t frames) const {
    return ring.available() >= frames || ended.load(std::memory_order_acquire);
}

void Channel::decodeLoop() {
    while (!quit_.load(std::memory_order_acquire)) {
        bool worked = false;
        {
            std::lock_guard lock(decoderLock);
            worked = fillLocked();
        }
        if (!worked)
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

bool Channel::fillLocked() {
    if (ended.load(std::memory_order_relaxed) || ring.space() < chunkFrames)
        return false;
    // A short looping file could wrap more often than the mixer takes its marks.
    if (marksWritten.load(std::memory_order_relaxed) - marksRead.load(std::memory_order_acquire) >=
        marks.size())
        return false;
    std::size_t got = decoder->render(scratch_.data(), chunkFrames);
    ring.write(scratch_.data(), got);
    if (got == chunkFrames)
        return true;
    if (loops && lengthFrames > 0 && decoder->seek(0)) {
        std::uint32_t at = marksWritten.load(std::memory_order_relaxed);
        marks[at % marks.size()] = PositionMark{ring.written(), 0};
        marksWritten.store(at + 1, std::memory_order_release);
        return true;
    }
    endIndex.store(ring.written(), std::memory_order_relaxed);
    ended.store(true, std::memory_order_release);
    return true;
}
