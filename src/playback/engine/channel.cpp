#include "playback/engine/channel.h"

#include "util/log.h"

namespace {
// Frames a decode thread renders at a time: small enough to keep the lock short, large enough
// that the decoders work in efficient blocks.
constexpr std::size_t chunkFrames = 1024;
// Room in the ring that wakes a sleeping decode thread: a quarter of the ring, so that it wakes
// about five times a second to top the ring up rather than at every block the mixer takes.
constexpr std::size_t refillFrames = 8192;
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

Channel::Channel(std::unique_ptr<Decoder> source, bool loopsAtEnd, std::string file)
    : decoder(std::move(source)), loops(loopsAtEnd), lengthFrames(decoder->lengthFrames()),
      sourceRate(decoder->sourceRate()), sourceChannels(decoder->sourceChannels()),
      path(std::move(file)), scratch_(chunkFrames * 2) {
    midi = dynamic_cast<MidiDecoder*>(decoder.get());
    thread_ = std::thread([this] { decodeLoop(); });
}

Channel::~Channel() {
    quit_.store(true, std::memory_order_release);
    wakeDecoder();
    if (thread_.joinable())
        thread_.join();
}

void Channel::restartAt(std::uint64_t frame) {
    passStart_ = frame;
    passFrames_ = 0;
    ring.clear();
    marksRead.store(marksWritten.load(std::memory_order_relaxed), std::memory_order_release);
    ended.store(false, std::memory_order_release);
    position.store(frame, std::memory_order_release);
}

bool Channel::hasPrefill(std::size_t frames) const {
    return ring.available() >= frames || ended.load(std::memory_order_acquire);
}

bool Channel::waitForPrefill(std::size_t frames, std::chrono::steady_clock::time_point deadline) {
    std::unique_lock lock(progressLock_);
    return progress_.wait_until(lock, deadline, [&] { return hasPrefill(frames); });
}

void Channel::wakeDecoder() {
    wake_.fetch_add(1);
    wake_.notify_one();
}

// Sequentially consistent with the decode thread's asleep_ and wake_: either it sees the room
// made here before it sleeps, or this sees it asleep and wakes it.
void Channel::noteFramesTaken() {
    if (ring.space() < refillFrames)
        return;
    wake_.fetch_add(1);
    if (asleep_.load())
        wake_.notify_one();
}

void Channel::signalProgress() {
    { std::lock_guard lock(progressLock_); } // a waiter is either before its test or asleep
    progress_.notify_all();
}

void Channel::decodeLoop() {
    for (;;) {
        asleep_.store(true);
        std::uint32_t seen = wake_.load();
        if (quit_.load(std::memory_order_acquire))
            return;
        bool worked = false;
        {
            std::lock_guard lock(decoderLock);
            worked = fillLocked();
        }
        if (worked) {
            asleep_.store(false, std::memory_order_relaxed);
            signalProgress();
        } else {
            wake_.wait(seen); // until the mixer made room, or the control side has work
        }
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
    passFrames_ += got;
    if (got == chunkFrames)
        return true;
    if (!loops || lengthFrames == 0 || !loopLocked())
        endLocked();
    return true;
}

// Back to the beginning, unless the file was cut short or a whole pass gave nothing: then the
// same song cannot come again, and the stream ends where it is, as a failed one.
bool Channel::loopLocked() {
    bool emptyPass = passStart_ == 0 && passFrames_ == 0;
    if (emptyPass || !decoder->sourceIntact() || !decoder->seek(0)) {
        logOut("Playback of %s ends: the file was cut short or cannot be read again\n",
               path.c_str());
        return false;
    }
    passStart_ = 0;
    passFrames_ = 0;
    std::uint32_t at = marksWritten.load(std::memory_order_relaxed);
    marks[at % marks.size()] = PositionMark{ring.written(), 0};
    marksWritten.store(at + 1, std::memory_order_release);
    return true;
}

// The mixer plays what the ring holds, then stops the channel and reports its length.
void Channel::endLocked() {
    endIndex.store(ring.written(), std::memory_order_relaxed);
    ended.store(true, std::memory_order_release);
}
