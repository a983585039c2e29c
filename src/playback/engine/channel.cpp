#include "playback/engine/channel.h"

#include "playback/engine/curlReader.h"

#include <thread>

namespace {
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

void DecodeThreads::started() {
    std::lock_guard lock(lock_);
    ++running_;
}

void DecodeThreads::finished() {
    std::lock_guard lock(lock_);
    if (--running_ == 0)
        allDone_.notify_all();
}

void DecodeThreads::waitForAll() {
    std::unique_lock lock(lock_);
    allDone_.wait(lock, [this] { return running_ == 0; });
}

Channel::Channel(ProbedFile probed, bool loopsAtEnd, std::string file, bool takesFonts,
                 std::vector<SoundFontRef> firstFonts)
    : loops(loopsAtEnd), midi(takesFonts), lengthFrames(probed.facts.lengthFrames),
      sourceRate(probed.facts.sourceRate), sourceChannels(probed.facts.sourceChannels),
      path(std::move(file)), reader(std::move(probed.reader)), opener_(std::move(probed.opener)),
      scratch_(chunkFrames * 2) {
    if (midi)
        askedFonts_ = std::move(firstFonts);
}

std::shared_ptr<Channel> Channel::start(ProbedFile probed, bool loops, std::string path, bool midi,
                                        std::vector<SoundFontRef> fonts, DecodeThreads& threads) {
    auto channel = std::make_shared<Channel>(std::move(probed), loops, std::move(path), midi,
                                             std::move(fonts));
    threads.started();
    std::thread([channel, &threads]() mutable {
        channel->run();
        channel.reset(); // the last owner, as a rule: the decoder goes on its own thread
        threads.finished();
    }).detach();
    return channel;
}

void Channel::stop() {
    quit_.store(true, std::memory_order_release);
    if (reader)
        reader->stop(); // its decoder may wait in a read
    wakeDecoder();
    signalProgress(); // a waiter for its audio must not wait for a decoder that quits
}

void Channel::requestSeekLocked(std::uint64_t frame) {
    {
        std::lock_guard lock(requestLock_);
        askedFrame_ = frame;
        heardTarget_.store(frame, std::memory_order_relaxed);
        seeksAsked.fetch_add(1, std::memory_order_release);
    }
    wakeDecoder();
}

void Channel::requestFonts(std::vector<SoundFontRef> fonts) {
    {
        std::lock_guard lock(requestLock_);
        askedFonts_ = std::move(fonts);
    }
    wakeDecoder();
}

std::uint64_t Channel::heardPosition() const {
    if (seeksHeard.load(std::memory_order_acquire) != seeksAsked.load(std::memory_order_acquire))
        return heardTarget_.load(std::memory_order_relaxed);
    return position.load(std::memory_order_acquire);
}

bool Channel::hasPrefill(std::size_t frames) const {
    return ring.available() >= frames || ended.load(std::memory_order_acquire);
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
