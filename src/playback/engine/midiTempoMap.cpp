#include "playback/engine/midiTempoMap.h"

#include <algorithm>
#include <cstring>
#include <optional>

double MidiTiming::secondsAt(double tick) const {
    auto it = std::find_if(tempoMap.rbegin(), tempoMap.rend(),
                           [&](const TempoPoint& p) { return double(p.tick) <= tick; });
    return it->seconds + (tick - double(it->tick)) * it->secondsPerTick;
}

double MidiTiming::tickAt(double seconds) const {
    auto it = std::find_if(tempoMap.rbegin(), tempoMap.rend(),
                           [&](const TempoPoint& p) { return p.seconds <= seconds; });
    return double(it->tick) + (seconds - it->seconds) / it->secondsPerTick;
}

namespace {

struct TempoEvent {
    std::uint64_t tick;
    std::uint32_t microsPerQuarter;
};

class ByteReader {
  public:
    ByteReader(const unsigned char* begin, const unsigned char* end) : at_(begin), end_(end) {}
    bool done() const { return at_ >= end_; }
    bool has(std::size_t n) const { return std::size_t(end_ - at_) >= n; }
    unsigned char peek() const { return *at_; }
    unsigned char byte() { return *at_++; }
    void skip(std::size_t n) { at_ += n; }
    // The next n bytes as a reader of their own; this one moves past them.
    ByteReader take(std::size_t n) {
        ByteReader part(at_, at_ + n);
        at_ += n;
        return part;
    }
    std::uint32_t bigEndian(int n) {
        std::uint32_t value = 0;
        while (n-- > 0)
            value = value << 8 | *at_++;
        return value;
    }
    // A variable-length quantity of at most four bytes; false if it runs off the end.
    bool varLen(std::uint32_t& value) {
        value = 0;
        for (int i = 0; i < 4 && !done(); ++i) {
            unsigned char b = byte();
            value = value << 7 | (b & 0x7F);
            if (!(b & 0x80))
                return true;
        }
        return false;
    }

  private:
    const unsigned char* at_;
    const unsigned char* end_;
};

// Walks one track; returns the tick of its last event, or nothing if the track is damaged.
std::optional<std::uint64_t> readTrack(ByteReader track, std::vector<TempoEvent>& tempos) {
    std::uint64_t tick = 0;
    unsigned char running = 0;
    while (!track.done()) {
        std::uint32_t delta = 0;
        if (!track.varLen(delta) || track.done())
            return std::nullopt;
        tick += delta;
        // Any status byte, a meta event's too, becomes the running status, as FluidSynth's
        // reader takes it: the length must be that of the song FluidSynth plays.
        if (track.peek() & 0x80)
            running = track.byte();
        unsigned char status = running;
        std::uint32_t length = 0;
        if (status == 0xFF) {
            if (!track.has(1))
                return std::nullopt;
            unsigned char type = track.byte();
            if (!track.varLen(length) || !track.has(length))
                return std::nullopt;
            if (type == 0x51 && length == 3) {
                std::uint32_t micros = track.bigEndian(3);
                if (micros > 0) // a tempo of zero would stop the clock
                    tempos.push_back({tick, micros});
            } else {
                track.skip(length);
            }
            if (type == 0x2F)
                return tick;
        } else if (status == 0xF0 || status == 0xF7) {
            if (!track.varLen(length) || !track.has(length))
                return std::nullopt;
            track.skip(length);
        } else if (status >= 0x80 && status < 0xF0) {
            std::size_t dataBytes = (status & 0xE0) == 0xC0 ? 1 : 2; // program, channel pressure
            if (!track.has(dataBytes))
                return std::nullopt;
            track.skip(dataBytes);
        } else {
            return std::nullopt; // a data byte with no status before it, or a real-time byte
        }
    }
    return tick;
}

MidiTiming buildTempoMap(int division, std::vector<TempoEvent> tempos, std::uint64_t endTick) {
    std::stable_sort(tempos.begin(), tempos.end(),
                     [](const TempoEvent& a, const TempoEvent& b) { return a.tick < b.tick; });
    MidiTiming timing;
    timing.endTick = endTick;
    timing.tempoMap.push_back({0, 0.0, 0.5 / division}); // 120 bpm until told otherwise
    for (const TempoEvent& tempo : tempos) {
        double secondsPerTick = tempo.microsPerQuarter / 1e6 / division;
        if (tempo.tick == timing.tempoMap.back().tick)
            timing.tempoMap.back().secondsPerTick = secondsPerTick;
        else
            timing.tempoMap.push_back(
                {tempo.tick, timing.secondsAt(double(tempo.tick)), secondsPerTick});
    }
    return timing;
}

} // namespace

// A Standard MIDI File: "MThd", then its tracks; chunks of other kinds are skipped, as players do.
MidiTiming readMidiTiming(std::span<const unsigned char> bytes, MidiProblem& problem) {
    ByteReader file(bytes.data(), bytes.data() + bytes.size());
    problem = MidiProblem::NotMidi;
    if (!file.has(14) || std::memcmp(bytes.data(), "MThd", 4) != 0)
        return {};
    file.skip(4);
    std::uint32_t headerLength = file.bigEndian(4);
    if (headerLength < 6 || !file.has(headerLength))
        return {};
    file.skip(2); // format: FluidSynth plays the tracks of 0, 1 and 2 side by side alike
    std::uint32_t trackCount = file.bigEndian(2);
    std::uint32_t division = file.bigEndian(2);
    file.skip(headerLength - 6);
    if (division & 0x8000) {
        problem = MidiProblem::Smpte; // FluidSynth's player refuses frame-based time
        return {};
    }
    if (division == 0 || trackCount == 0)
        return {};
    std::vector<TempoEvent> tempos;
    std::uint64_t endTick = 0;
    std::uint32_t tracksRead = 0;
    while (tracksRead < trackCount && file.has(8)) {
        char id[4];
        for (char& c : id)
            c = static_cast<char>(file.byte());
        std::uint32_t length = file.bigEndian(4);
        if (!file.has(length))
            return {};
        ByteReader chunk = file.take(length);
        if (std::memcmp(id, "MTrk", 4) != 0)
            continue;
        std::optional<std::uint64_t> last = readTrack(chunk, tempos);
        if (!last)
            return {};
        endTick = std::max(endTick, *last);
        ++tracksRead;
    }
    if (tracksRead == 0)
        return {};
    problem = MidiProblem::None;
    return buildTempoMap(int(division), std::move(tempos), endTick);
}
