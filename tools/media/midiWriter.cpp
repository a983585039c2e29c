#include "media/midiWriter.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <random>

namespace media {
namespace {

struct TempoPoint {
    std::uint32_t tick = 0;
    double seconds = 0.0;
    std::uint32_t microsPerQuarter = 500000;
};

// The song's tempo map once every change sits on a whole tick: the times the file itself states.
class TickGrid {
  public:
    TickGrid(int division, std::vector<MidiTempo> tempos) : division_(division) {
        std::stable_sort(tempos.begin(), tempos.end(),
                         [](const MidiTempo& a, const MidiTempo& b) { return a.start < b.start; });
        for (const MidiTempo& tempo : tempos) {
            auto micros = static_cast<std::uint32_t>(
                std::clamp(std::lround(60e6 / tempo.bpm), 1L, 0xFFFFFFL));
            std::uint32_t tick = tickAt(tempo.start);
            if (tick == points_.back().tick)
                points_.back().microsPerQuarter = micros;
            else
                points_.push_back({tick, secondsAt(tick), micros});
        }
    }

    std::uint32_t tickAt(double seconds) const {
        auto it = std::find_if(points_.rbegin(), points_.rend(),
                               [&](const TempoPoint& p) { return p.seconds <= seconds; });
        const TempoPoint& p = it == points_.rend() ? points_.front() : *it;
        double ticks = (seconds - p.seconds) * 1e6 / p.microsPerQuarter * division_;
        return p.tick + static_cast<std::uint32_t>(std::max(0L, std::lround(ticks)));
    }

    double secondsAt(std::uint32_t tick) const {
        auto it = std::find_if(points_.rbegin(), points_.rend(),
                               [&](const TempoPoint& p) { return p.tick <= tick; });
        return it->seconds + double(tick - it->tick) * it->microsPerQuarter / 1e6 / division_;
    }

    const std::vector<TempoPoint>& points() const { return points_; }

  private:
    int division_;
    std::vector<TempoPoint> points_{TempoPoint{}};
};

struct Event {
    std::uint32_t tick = 0;
    int order = 0; // at one tick: set-up first, then note-offs, then note-ons
    std::string bytes;
};

void putVarLen(std::string& out, std::uint32_t value) {
    char groups[5];
    int count = 0;
    do {
        groups[count++] = static_cast<char>(value & 0x7F);
        value >>= 7;
    } while (value != 0);
    while (count > 1)
        out += static_cast<char>(groups[--count] | 0x80);
    out += groups[0];
}

void putBigEndian(std::string& out, std::uint32_t value, int bytes) {
    for (int shift = (bytes - 1) * 8; shift >= 0; shift -= 8)
        out += static_cast<char>((value >> shift) & 0xFF);
}

std::string bytesOf(std::initializer_list<int> values) {
    std::string out;
    for (int v : values)
        out += static_cast<char>(v);
    return out;
}

std::string metaEvent(int type, const std::string& data) {
    std::string out = bytesOf({0xFF, type});
    putVarLen(out, static_cast<std::uint32_t>(data.size()));
    return out + data;
}

// Channel messages share a status byte with the one before (running status), as most
// sequencers write them; meta events and system exclusive cancel it.
std::string encodeTrack(std::vector<Event> events, std::uint32_t endTick) {
    std::stable_sort(events.begin(), events.end(), [](const Event& a, const Event& b) {
        return a.tick != b.tick ? a.tick < b.tick : a.order < b.order;
    });
    std::string data;
    std::uint32_t last = 0;
    unsigned char running = 0;
    for (const Event& event : events) {
        putVarLen(data, event.tick - last);
        last = event.tick;
        auto status = static_cast<unsigned char>(event.bytes[0]);
        data += status == running ? event.bytes.substr(1) : event.bytes;
        running = status < 0xF0 ? status : 0;
    }
    putVarLen(data, endTick - last);
    data += metaEvent(0x2F, "");
    std::string chunk = "MTrk";
    putBigEndian(chunk, static_cast<std::uint32_t>(data.size()), 4);
    return chunk + data;
}

std::vector<Event> tempoTrack(const TickGrid& grid) {
    std::vector<Event> events;
    events.push_back({0, 0, metaEvent(0x03, "tempo map")});
    events.push_back({0, 0, bytesOf({0xF0, 0x05, 0x7E, 0x7F, 0x09, 0x01, 0xF7})}); // GM on
    events.push_back({0, 0, metaEvent(0x58, bytesOf({4, 2, 24, 8}))});
    for (const TempoPoint& point : grid.points()) {
        std::string micros;
        putBigEndian(micros, point.microsPerQuarter, 3);
        events.push_back({point.tick, 0, metaEvent(0x51, micros)});
    }
    return events;
}

bool songFits(const MidiSong& song) {
    auto inRange = [](int v, int low, int high) { return v >= low && v <= high; };
    if (!inRange(song.division, 1, 0x7FFF) || song.emptyTracks < 0)
        return false;
    for (const MidiTempo& tempo : song.tempos)
        if (!(tempo.bpm > 0.0) || tempo.start < 0.0)
            return false;
    for (const MidiProgram& program : song.programs)
        if (!inRange(program.channel, 0, 15) || !inRange(program.program, 0, 127))
            return false;
    for (const MidiNote& note : song.notes)
        if (!inRange(note.channel, 0, 15) || !inRange(note.key, 0, 127) ||
            !inRange(note.velocity, 1, 127) || note.start < 0.0 || !(note.length > 0.0))
            return false;
    return true;
}

// One track per channel: its name, volume and program, then its notes. Returns the last tick used.
std::uint32_t addChannelEvents(const MidiSong& song, const TickGrid& grid,
                               std::vector<std::vector<Event>>& channels) {
    std::uint32_t lastTick = 0;
    for (const MidiProgram& program : song.programs)
        channels[program.channel].push_back(
            {0, 0, bytesOf({0xC0 | program.channel, program.program})});
    for (const MidiNote& note : song.notes) {
        std::uint32_t on = grid.tickAt(note.start);
        std::uint32_t off = std::max(on + 1, grid.tickAt(note.start + note.length));
        int status = 0x90 | note.channel;
        channels[note.channel].push_back({on, 2, bytesOf({status, note.key, note.velocity})});
        channels[note.channel].push_back({off, 1, bytesOf({status, note.key, 0})});
        lastTick = std::max(lastTick, off);
    }
    for (int channel = 0; channel < 16; ++channel) {
        if (channels[channel].empty())
            continue;
        std::string name = "channel " + std::to_string(channel + 1);
        channels[channel].push_back({0, 0, metaEvent(0x03, name)});
        channels[channel].push_back({0, 0, bytesOf({0xB0 | channel, 7, 100})});
    }
    return lastTick;
}

} // namespace

std::optional<double> writeMidi(const std::string& path, const MidiSong& song) {
    if (!songFits(song))
        return std::nullopt;
    TickGrid grid(song.division, song.tempos);
    std::vector<std::vector<Event>> channels(16);
    std::uint32_t endTick = std::max(grid.tickAt(song.end), addChannelEvents(song, grid, channels));

    std::string tracks = encodeTrack(tempoTrack(grid), endTick);
    int trackCount = 1;
    for (std::vector<Event>& events : channels) {
        if (events.empty())
            continue;
        tracks += encodeTrack(std::move(events), endTick);
        ++trackCount;
    }
    for (int i = 0; i < song.emptyTracks; ++i)
        tracks += encodeTrack({}, endTick);
    trackCount += song.emptyTracks;
    if (trackCount > 0xFFFF)
        return std::nullopt;
    std::string file = "MThd";
    putBigEndian(file, 6, 4);
    putBigEndian(file, 1, 2);
    putBigEndian(file, static_cast<std::uint32_t>(trackCount), 2);
    putBigEndian(file, static_cast<std::uint32_t>(song.division), 2);
    file += tracks;

    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(file.data(), static_cast<std::streamsize>(file.size()));
    out.close();
    if (!out)
        return std::nullopt;
    return grid.secondsAt(endTick);
}

namespace {

// Calls visit(time, beatIndex, beatSeconds) for every beat that fits whole before `seconds`,
// following the band's tempo change at the middle.
template <typename Visit>
void forEachBeat(double seconds, double firstBpm, double secondBpm, Visit visit) {
    double t = 0.0;
    for (int beat = 0;; ++beat) {
        double beatSeconds = 60.0 / (t < seconds / 2 ? firstBpm : secondBpm);
        if (t + beatSeconds > seconds + 1e-9)
            return;
        visit(t, beat, beatSeconds);
        t += beatSeconds;
    }
}

constexpr int chordRoots[] = {60, 65, 67, 57}; // C, F, G, A minor
constexpr int drumChannel = 9;

} // namespace

MidiSong bandSong(double seconds, double laterBpm) {
    MidiSong song;
    song.tempos = {{0.0, 120.0}};
    if (laterBpm != 120.0)
        song.tempos.push_back({seconds / 2, laterBpm});
    song.programs = {{0, 0}, {1, 33}, {2, 48}, {drumChannel, 0}};
    song.end = seconds;
    forEachBeat(seconds, 120.0, laterBpm, [&](double t, int beat, double beatSeconds) {
        int root = chordRoots[(beat / 4) % 4];
        int third = root == 57 ? 3 : 4;
        for (int offset : {0, third, 7})
            song.notes.push_back({0, root + offset, 90, t, beatSeconds * 0.9});
        song.notes.push_back({1, root - 24, 100, t, beatSeconds * 0.8});
        song.notes.push_back({2, root + 12, 70, t, beatSeconds});
        song.notes.push_back({drumChannel, beat % 2 ? 38 : 36, 110, t, 0.1});
        song.notes.push_back({drumChannel, 42, 80, t, 0.05});
        song.notes.push_back({drumChannel, 42, 60, t + beatSeconds / 2, 0.05});
    });
    return song;
}

MidiSong denseGeneralMidiSong(double seconds, std::uint32_t seed) {
    // One program from each corner of General MIDI: pianos, organ, guitars, basses, strings,
    // ensembles, brass, reeds, pipes, leads and pads.
    constexpr int programs[] = {0, 4, 11, 19, 24, 29, 33, 40, 48, 52, 56, 61, 65, 71, 88};
    std::mt19937 rng(seed);
    MidiSong song;
    song.tempos = {{0.0, 132.0}, {seconds / 2, 108.0}};
    song.end = seconds;
    int melodic = 0;
    for (int channel = 0; channel < 16; ++channel)
        if (channel != drumChannel)
            song.programs.push_back({channel, programs[melodic++]});
    song.programs.push_back({drumChannel, 0});
    forEachBeat(seconds, 132.0, 108.0, [&](double t, int beat, double beatSeconds) {
        int root = chordRoots[(beat / 2) % 4];
        double length = std::min(beatSeconds * 1.5, seconds - t);
        for (const MidiProgram& program : song.programs) {
            if (program.channel == drumChannel)
                continue;
            int octave = 12 * (static_cast<int>(rng() % 3) - 1) + (program.program < 40 ? -12 : 0);
            for (int offset : {0, 4, 7, 11}) {
                int velocity = 70 + static_cast<int>(rng() % 41);
                song.notes.push_back(
                    {program.channel, root + octave + offset, velocity, t, length});
            }
        }
        song.notes.push_back({drumChannel, beat % 2 ? 38 : 36, 115, t, 0.1});
        if (beat % 8 == 0)
            song.notes.push_back({drumChannel, 49, 100, t, 0.5});
        for (int half = 0; half < 2; ++half)
            song.notes.push_back(
                {drumChannel, 42, 70 + half * 20, t + half * beatSeconds / 2, 0.05});
    });
    return song;
}

} // namespace media
