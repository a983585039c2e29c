#include "playback/engine/mixer.h"

#include "playback/engine/channel.h"
#include "playback/engine/engine.h"

#include <algorithm>

namespace {

constexpr int playing = static_cast<int>(ChannelState::Playing);
constexpr int stopped = static_cast<int>(ChannelState::Stopped);

// The ring frame at which the source position next jumps, or none.
bool nextMark(const Channel& ch, PositionMark& mark) {
    std::uint32_t read = ch.marksRead.load(std::memory_order_relaxed);
    if (read == ch.marksWritten.load(std::memory_order_acquire))
        return false;
    mark = ch.marks[read % ch.marks.size()];
    return true;
}

// The mixer's side of a seek or a failure. True when the ring holds the audio of the last seek
// asked for; until then the channel is silent and its slides wait.
bool catchUp(Channel& ch) {
    std::uint32_t asked = ch.seeksAsked.load(std::memory_order_acquire);
    if (ch.seeksHeard.load(std::memory_order_relaxed) == asked)
        return true;
    if (ch.failed.load(std::memory_order_acquire)) {
        // The seek will never be done: the channel ends at once, at its length.
        ch.ring.discardTo(ch.endIndex.load(std::memory_order_relaxed));
        ch.marksRead.store(ch.marksWritten.load(std::memory_order_acquire));
        ch.position.store(ch.lengthFrames, std::memory_order_release);
        ch.seeksHeard.store(asked, std::memory_order_release);
        return true;
    }
    if (ch.seeksDone.load(std::memory_order_acquire) != asked)
        return false;
    ch.ring.discardTo(ch.seekRingIndex.load(std::memory_order_relaxed));
    ch.marksRead.store(ch.seekMarks.load(std::memory_order_relaxed));
    ch.position.store(ch.seekFrame.load(std::memory_order_relaxed), std::memory_order_release);
    ch.primed.store(false, std::memory_order_relaxed);
    ch.seeksHeard.store(asked, std::memory_order_release);
    ch.noteFramesTaken();
    return true;
}

void mixChannel(Channel& ch, float* out, std::size_t frames) {
    if (!ch.primed.load(std::memory_order_relaxed)) {
        if (!ch.hasPrefill(prefillFrames))
            return; // not started yet: silent, and its slides wait for its first frame
        ch.primed.store(true, std::memory_order_relaxed);
    }
    const VolumeRamp ramp = ch.volume.load();
    const VolumeRamp gain = ch.gain.load();
    std::uint64_t played = ch.played.load(std::memory_order_relaxed);
    // Most blocks meet a gain at rest: one factor, and no second ramp to follow per frame.
    const bool gainAtRest = played >= gain.start + gain.frames;
    std::uint64_t position = ch.position.load(std::memory_order_relaxed);
    std::uint64_t ringIndex = ch.ring.read();
    std::size_t count = std::min(ch.ring.available(), frames);

    PositionMark mark;
    bool hasMark = nextMark(ch, mark);
    for (std::size_t i = 0; i < count; ++i) {
        while (hasMark && mark.ringIndex <= ringIndex + i) {
            position = mark.position;
            ch.marksRead.fetch_add(1, std::memory_order_release);
            hasMark = nextMark(ch, mark);
        }
        float volume = ramp.at(played + i) * (gainAtRest ? gain.to : gain.at(played + i));
        out[2 * i] += ch.ring.left(i) * volume;
        out[2 * i + 1] += ch.ring.right(i) * volume;
        ++position;
    }
    ch.ring.consume(count);
    ch.noteFramesTaken();
    ch.played.store(played + count, std::memory_order_relaxed);
    if (count == frames) {
        ch.position.store(position, std::memory_order_release);
        return;
    }
    if (ch.ended.load(std::memory_order_acquire) &&
        ch.ring.read() >= ch.endIndex.load(std::memory_order_relaxed)) {
        // A module that played out keeps reporting its length; a station has none.
        ch.position.store(ch.reader ? position : ch.lengthFrames, std::memory_order_release);
        int expected = playing;
        ch.state.compare_exchange_strong(expected, stopped, std::memory_order_acq_rel);
        return;
    }
    ch.position.store(position, std::memory_order_release);
    ch.underruns.fetch_add(1, std::memory_order_relaxed);
}

} // namespace

bool mixBlock(MixerTable& table, float* out, std::size_t frames) {
    std::fill(out, out + frames * 2, 0.0f);
    bool anyPlayed = false;
    for (std::atomic<Channel*>& slot : table.live) {
        Channel* ch = slot.load(std::memory_order_acquire);
        if (!ch)
            continue;
        bool current = catchUp(*ch);
        if (ch->state.load(std::memory_order_acquire) != playing)
            continue;
        anyPlayed = true;
        if (current)
            mixChannel(*ch, out, frames);
    }
    return anyPlayed;
}

bool anyPlaying(const MixerTable& table) {
    for (const std::atomic<Channel*>& slot : table.live) {
        const Channel* ch = slot.load(std::memory_order_acquire);
        if (ch && ch->state.load(std::memory_order_acquire) == playing)
            return true;
    }
    return false;
}

bool readyToMix(Channel& ch, std::size_t frames) {
    if (!catchUp(ch))
        return false;
    bool primed = ch.primed.load(std::memory_order_relaxed);
    return ch.hasPrefill(primed ? frames : std::max(frames, prefillFrames));
}
