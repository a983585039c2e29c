// A channel's decode thread: it opens the decoder, serves the control side's requests and keeps
// the ring filled, and sleeps whenever there is nothing to do.
#include "playback/engine/channel.h"
#include "util/log.h"

void Channel::run() {
    open();
    signalProgress();
    for (;;) {
        asleep_.store(true);
        std::uint32_t seen = wake_.load();
        if (quit_.load(std::memory_order_acquire))
            return;
        if (work()) {
            asleep_.store(false, std::memory_order_relaxed);
            signalProgress();
        } else {
            wake_.wait(seen); // until the mixer made room, or the control side has work
        }
    }
}

// Fonts set on the stream before the synthesiser exists are the ones it starts with.
void Channel::open() {
    std::vector<SoundFontRef> first;
    {
        std::lock_guard lock(requestLock_);
        if (askedFonts_)
            first = std::move(*askedFonts_);
        askedFonts_.reset();
    }
    EngineError error = EngineError::Ok;
    decoder_ = opener_->open(first, error);
    opener_.reset();
    if (!decoder_) {
        fail(); // the opener told why, naming the file
        return;
    }
    midiDecoder_ = dynamic_cast<MidiDecoder*>(decoder_.get());
}

bool Channel::work() {
    if (failed.load(std::memory_order_relaxed))
        return false;
    Requests requests = takeRequests();
    bool worked = false;
    if (requests.fonts && midiDecoder_) {
        midiDecoder_->setFonts(*requests.fonts);
        worked = true;
    }
    if (requests.seek) {
        seekTo(requests.seekNumber, requests.seekTo);
        return true;
    }
    return fill() || worked;
}

Channel::Requests Channel::takeRequests() {
    std::lock_guard lock(requestLock_);
    Requests requests;
    std::uint32_t asked = seeksAsked.load(std::memory_order_relaxed);
    if (asked != seeksServed_) { // only the last of several seeks matters
        requests.seek = true;
        requests.seekNumber = asked;
        requests.seekTo = askedFrame_;
        seeksServed_ = asked;
    }
    requests.fonts = std::move(askedFonts_);
    askedFonts_.reset();
    return requests;
}

// The audio from frame on starts at the ring's current end; the mixer drops what lies before.
void Channel::seekTo(std::uint32_t number, std::uint64_t frame) {
    if (!decoder_->seek(frame)) {
        logOut("Playback of %s ends: it cannot move to frame %llu\n", path.c_str(),
               static_cast<unsigned long long>(frame));
        fail();
        return;
    }
    passStart_ = frame;
    passFrames_ = 0;
    ended.store(false, std::memory_order_relaxed);
    seekRingIndex.store(ring.written(), std::memory_order_relaxed);
    seekMarks.store(marksWritten.load(std::memory_order_relaxed), std::memory_order_relaxed);
    seekFrame.store(frame, std::memory_order_relaxed);
    seeksDone.store(number, std::memory_order_release);
}

bool Channel::fill() {
    if (ended.load(std::memory_order_relaxed) || ring.space() < chunkFrames)
        return false;
    // A short looping file could wrap more often than the mixer takes its marks.
    if (marksWritten.load(std::memory_order_relaxed) - marksRead.load(std::memory_order_acquire) >=
        marks.size())
        return false;
    std::size_t got = decoder_->render(scratch_.data(), chunkFrames);
    ring.write(scratch_.data(), got);
    passFrames_ += got;
    if (got == chunkFrames)
        return true;
    if (loops && lengthFrames > 0)
        loop();
    else
        end();
    return true;
}

// Back to the beginning, unless the file was cut short or a whole pass gave nothing: then the
// same song cannot come again, and the stream ends where it is, as a failed one.
void Channel::loop() {
    bool emptyPass = passStart_ == 0 && passFrames_ == 0;
    if (emptyPass || !decoder_->sourceIntact() || !decoder_->seek(0)) {
        logOut("Playback of %s ends: the file was cut short or cannot be read again\n",
               path.c_str());
        fail();
        return;
    }
    passStart_ = 0;
    passFrames_ = 0;
    std::uint32_t at = marksWritten.load(std::memory_order_relaxed);
    marks[at % marks.size()] = PositionMark{ring.written(), 0};
    marksWritten.store(at + 1, std::memory_order_release);
}

// The mixer plays what the ring holds, then stops the channel and reports its length.
void Channel::end() {
    endIndex.store(ring.written(), std::memory_order_relaxed);
    ended.store(true, std::memory_order_release);
}

// As an end, for good: no request is served any more, and a seek waiting for this decoder is
// dropped by the mixer, so the channel stops at once.
void Channel::fail() {
    end();
    failed.store(true, std::memory_order_release);
}
