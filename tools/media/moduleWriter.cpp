#include "media/moduleWriter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <random>
#include <vector>

namespace media {
namespace {

constexpr int modRows = 64;
constexpr int waveCount = 3; // square, saw, triangle: one sample each in a .mod
constexpr int waveLength = 256;
constexpr int waveCycle = 32;
constexpr int sampleVolume = 48; // leaves headroom when many channels sound at once
constexpr int effectSetVolume = 0x0C;
constexpr int effectSetSpeed = 0x0F;

// ProTracker periods at finetune 0 for its three octaves; the same 36 steps serve as .xm notes.
constexpr std::array<int, 36> modPeriods = {
    856, 808, 762, 720, 678, 640, 604, 570, 538, 508, 480, 453, 428, 404, 381, 360, 339, 320,
    302, 285, 269, 254, 240, 226, 214, 202, 190, 180, 170, 160, 151, 143, 135, 127, 120, 113};
constexpr int pentatonic[] = {0, 2, 4, 7, 9};
constexpr int xmFirstNote = 37; // C-3 in .xm counting, where 1 is C-0

struct Cell {
    int step = -1; // index into modPeriods; -1: no note
    int wave = 0;
    int effect = 0;
    int param = 0;
};

// Seeded notes: channel 0 strikes every fourth row, every channel strikes on about half the rows,
// each with its own volume, so that any stretch of the song differs from its neighbours.
std::vector<Cell> composePattern(int rows, int channels, double volume, std::mt19937& rng) {
    std::vector<Cell> cells(static_cast<std::size_t>(rows * channels));
    for (int row = 0; row < rows; ++row) {
        for (int channel = 0; channel < channels; ++channel) {
            bool strike = (channel == 0 && row % 4 == 0) || rng() % 2 == 0;
            if (!strike)
                continue;
            Cell& cell = cells[static_cast<std::size_t>(row * channels + channel)];
            cell.step = static_cast<int>(12 * (rng() % 3) + pentatonic[rng() % 5]);
            cell.wave = static_cast<int>(rng() % waveCount);
            cell.effect = effectSetVolume;
            int loudest = static_cast<int>(16 + rng() % 49);
            cell.param = std::max(1, static_cast<int>(std::lround(loudest * volume)));
        }
    }
    return cells;
}

std::vector<std::int8_t> synthesiseWave(int kind) {
    std::vector<std::int8_t> wave(waveLength);
    for (int i = 0; i < waveLength; ++i) {
        int phase = i % waveCycle; // 0..31
        int value = 0;
        if (kind == 0)
            value = phase < waveCycle / 2 ? 90 : -90;
        else if (kind == 1)
            value = -96 + phase * 6;
        else
            value = phase < waveCycle / 2 ? -96 + phase * 12 : 96 - (phase - 16) * 12;
        wave[static_cast<std::size_t>(i)] = static_cast<std::int8_t>(value);
    }
    return wave;
}

void putByte(std::string& out, int value) {
    out.push_back(static_cast<char>(value & 0xFF));
}

void putBe16(std::string& out, int value) {
    putByte(out, value >> 8);
    putByte(out, value);
}

void putLe16(std::string& out, int value) {
    putByte(out, value);
    putByte(out, value >> 8);
}

void putLe32(std::string& out, std::uint32_t value) {
    putLe16(out, static_cast<int>(value & 0xFFFF));
    putLe16(out, static_cast<int>(value >> 16));
}

// Text padded with zero bytes to its field's width.
void putText(std::string& out, const std::string& text, std::size_t width) {
    std::string field = text.substr(0, width);
    field.resize(width, '\0');
    out += field;
}

bool writeBytes(const std::string& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(file.flush());
}

int orderCount(const TrackerSong& song) {
    return song.noOrders ? 0 : song.patterns;
}

// The orders play each pattern once, so the length counts the rows of as many patterns.
double songSeconds(int rowsPerPattern, const TrackerSong& song) {
    return orderCount(song) * rowsPerPattern * song.speed * 2.5 / song.bpm;
}

bool tempoFits(const TrackerSong& song) {
    return song.speed >= 1 && song.speed <= 31 && song.bpm >= 32 && song.bpm <= 255;
}

// "M.K." is the four-channel tag every player knows; wider songs use the PC trackers' tags.
std::optional<std::string> modTag(int channels) {
    if (channels == 4)
        return "M.K.";
    if (channels == 6 || channels == 8)
        return std::to_string(channels) + "CHN";
    if (channels >= 10 && channels <= 32 && channels % 2 == 0)
        return std::to_string(channels) + "CH";
    return std::nullopt;
}

void putModSampleHeaders(std::string& out) {
    for (int sample = 0; sample < 31; ++sample) {
        bool used = sample < waveCount;
        putText(out, used ? "wave " + std::to_string(sample + 1) : "", 22);
        putBe16(out, used ? waveLength / 2 : 0); // lengths count 16-bit words
        putByte(out, 0);                         // finetune
        putByte(out, used ? sampleVolume : 0);
        putBe16(out, 0);                         // loop start
        putBe16(out, used ? waveLength / 2 : 1); // loop length; 1 means no loop
    }
}

// The first row of the song sets speed and tempo itself, as ProTracker has no header for them.
void putModCell(std::string& out, Cell cell, bool firstRow, int channel, const TrackerSong& song) {
    if (firstRow && channel < 2) {
        cell.effect = effectSetSpeed;
        cell.param = channel == 0 ? song.speed : song.bpm;
    }
    int period = cell.step < 0 ? 0 : modPeriods[static_cast<std::size_t>(cell.step)];
    int sample = cell.step < 0 ? 0 : cell.wave + 1;
    putByte(out, (sample & 0xF0) | (period >> 8));
    putByte(out, period);
    putByte(out, ((sample & 0x0F) << 4) | cell.effect);
    putByte(out, cell.param);
}

} // namespace

std::optional<double> writeMod(const std::string& path, const TrackerSong& song) {
    std::optional<std::string> tag = modTag(song.channels);
    if (!tag || song.patterns < 1 || song.patterns > 64 || !tempoFits(song))
        return std::nullopt;
    std::string out;
    putText(out, "marble test song", 20);
    putModSampleHeaders(out);
    putByte(out, orderCount(song));
    putByte(out, 127); // no restart position
    for (int order = 0; order < 128; ++order)
        putByte(out, order < song.patterns ? order : 0);
    out += *tag;
    std::mt19937 rng(song.seed);
    for (int pattern = 0; pattern < song.patterns; ++pattern) {
        std::vector<Cell> cells = composePattern(modRows, song.channels, song.volume, rng);
        for (int row = 0; row < modRows; ++row)
            for (int channel = 0; channel < song.channels; ++channel)
                putModCell(out, cells[static_cast<std::size_t>(row * song.channels + channel)],
                           pattern == 0 && row == 0, channel, song);
    }
    for (int kind = 0; kind < waveCount; ++kind)
        for (std::int8_t value : synthesiseWave(kind))
            putByte(out, value);
    if (!writeBytes(path, out))
        return std::nullopt;
    return songSeconds(modRows, song);
}

namespace {

void putXmHeader(std::string& out, const TrackerSong& song) {
    out += "Extended Module: ";
    putText(out, "marble test song", 20);
    putByte(out, 0x1A);
    putText(out, "mediaFixtures", 20);
    putLe16(out, 0x0104);
    putLe32(out, 276); // header size, counted from this field to the end of the order table
    putLe16(out, orderCount(song));
    putLe16(out, 0); // restart position
    putLe16(out, song.channels);
    putLe16(out, song.patterns);
    putLe16(out, 1); // instruments
    putLe16(out, 1); // linear frequency table
    putLe16(out, song.speed);
    putLe16(out, song.bpm);
    for (int order = 0; order < 256; ++order)
        putByte(out, order < song.patterns ? order : 0);
}

// Unpacked cells: note, instrument, volume column, effect, parameter.
void putXmPattern(std::string& out, const std::vector<Cell>& cells, int rows) {
    putLe32(out, 9); // pattern header size
    putByte(out, 0); // packing type
    putLe16(out, rows);
    putLe16(out, static_cast<int>(cells.size() * 5));
    for (const Cell& cell : cells) {
        bool note = cell.step >= 0;
        putByte(out, note ? xmFirstNote + cell.step : 0);
        putByte(out, note ? 1 : 0);
        putByte(out, 0);
        putByte(out, cell.effect);
        putByte(out, cell.param);
    }
}

// One instrument of one looped saw sample, no envelopes; FastTracker 2 pads its header to 263.
void putXmInstrument(std::string& out) {
    constexpr std::size_t headerSize = 263;
    std::size_t start = out.size();
    putLe32(out, headerSize);
    putText(out, "saw", 22);
    putByte(out, 0);                                     // type
    putLe16(out, 1);                                     // samples
    putLe32(out, 40);                                    // sample header size
    out.append(headerSize - (out.size() - start), '\0'); // key map, envelopes, vibrato: all zero
    putLe32(out, waveLength);
    putLe32(out, 0);          // loop start
    putLe32(out, waveLength); // loop length
    putByte(out, sampleVolume);
    putByte(out, 0);   // finetune
    putByte(out, 1);   // forward loop, 8-bit
    putByte(out, 128); // panning
    putByte(out, 0);   // relative note
    putByte(out, 0);   // reserved
    putText(out, "saw", 22);
    int previous = 0; // sample data is stored as deltas
    for (std::int8_t value : synthesiseWave(1)) {
        putByte(out, value - previous);
        previous = value;
    }
}

} // namespace

std::optional<double> writeXm(const std::string& path, const TrackerSong& song) {
    if (song.channels < 2 || song.channels > 32 || song.channels % 2 != 0 || song.patterns < 1 ||
        song.patterns > 256 || song.rowsPerPattern < 1 || song.rowsPerPattern > 256 ||
        !tempoFits(song))
        return std::nullopt;
    std::string out;
    putXmHeader(out, song);
    std::mt19937 rng(song.seed);
    for (int pattern = 0; pattern < song.patterns; ++pattern)
        putXmPattern(out, composePattern(song.rowsPerPattern, song.channels, song.volume, rng),
                     song.rowsPerPattern);
    putXmInstrument(out);
    if (!writeBytes(path, out))
        return std::nullopt;
    return songSeconds(song.rowsPerPattern, song);
}

namespace {

// The file so far padded to a paragraph of 16 bytes, where S3M pointers point.
void padToParagraph(std::string& out) {
    out.append((16 - out.size() % 16) % 16, '\0');
}

// A little-endian number written over bytes reserved before: a length or a pointer known later.
void putLeAt(std::string& out, std::size_t at, std::size_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        out[at + static_cast<std::size_t>(i)] = static_cast<char>((value >> (8 * i)) & 0xFF);
}

// A 16-bit paragraph pointer at `at` to where the file ends now.
void pointHere(std::string& out, std::size_t at) {
    putLeAt(out, at, out.size() / 16, 2);
}

void putS3mHeader(std::string& out, const TrackerSong& song) {
    putText(out, "marble test song", 28);
    putByte(out, 0x1A);
    putByte(out, 16); // a module
    putLe16(out, 0);
    putLe16(out, orderCount(song));
    putLe16(out, waveCount);
    putLe16(out, song.patterns);
    putLe16(out, 0);      // flags
    putLe16(out, 0x1320); // made by Scream Tracker 3.20
    putLe16(out, 2);      // unsigned samples
    out += "SCRM";
    putByte(out, 64); // global volume
    putByte(out, song.speed);
    putByte(out, song.bpm);
    putByte(out, 0xB0);   // stereo, master volume 48
    putByte(out, 16);     // click removal
    putByte(out, 0);      // no panning table
    out.append(10, '\0'); // reserved, no special data
    // Channels alternate left and right; the rest are unused.
    for (int channel = 0; channel < 32; ++channel)
        putByte(out, channel >= song.channels ? 255 : (channel % 2) * 8 + (channel / 2) % 8);
    for (int order = 0; order < orderCount(song); ++order)
        putByte(out, order);
}

void putS3mSample(std::string& out, int kind, std::size_t& dataPointer) {
    putByte(out, 1); // a sample
    putText(out, "", 12);
    dataPointer = out.size();
    putByte(out, 0); // the data's paragraph, three bytes: set once the data is placed
    putLe16(out, 0);
    putLe32(out, waveLength);
    putLe32(out, 0);          // loop start
    putLe32(out, waveLength); // loop end
    putByte(out, sampleVolume);
    putByte(out, 0);
    putByte(out, 0); // not packed
    putByte(out, 1); // looped, 8-bit, mono
    putLe32(out, 8363);
    out.append(12, '\0');
    putText(out, "wave " + std::to_string(kind + 1), 28);
    out += "SCRS";
}

// Packed rows: a byte naming the channel and what follows, note, sample, volume; 0 ends a row.
void putS3mPattern(std::string& out, const std::vector<Cell>& cells, int channels) {
    std::size_t start = out.size();
    putLe16(out, 0); // the packed length, set below
    for (int row = 0; row < modRows; ++row) {
        for (int channel = 0; channel < channels; ++channel) {
            const Cell& cell = cells[static_cast<std::size_t>(row * channels + channel)];
            if (cell.step < 0)
                continue;
            putByte(out, channel | 0x20 | 0x40);
            putByte(out, (4 + cell.step / 12) << 4 | cell.step % 12);
            putByte(out, cell.wave + 1);
            putByte(out, cell.param);
        }
        putByte(out, 0);
    }
    putLeAt(out, start, out.size() - start, 2);
}

} // namespace

std::optional<double> writeS3m(const std::string& path, const TrackerSong& song) {
    if (song.channels < 1 || song.channels > 16 || song.patterns < 1 || song.patterns > 64 ||
        !tempoFits(song))
        return std::nullopt;
    std::string out;
    putS3mHeader(out, song);
    std::size_t pointers = out.size(); // the samples', then the patterns'
    out.append(2u * static_cast<std::size_t>(waveCount + song.patterns), '\0');
    std::size_t dataPointers[waveCount];
    for (int kind = 0; kind < waveCount; ++kind) {
        padToParagraph(out);
        pointHere(out, pointers + 2u * static_cast<std::size_t>(kind));
        putS3mSample(out, kind, dataPointers[kind]);
    }
    std::mt19937 rng(song.seed);
    for (int pattern = 0; pattern < song.patterns; ++pattern) {
        padToParagraph(out);
        pointHere(out, pointers + 2u * static_cast<std::size_t>(waveCount + pattern));
        putS3mPattern(out, composePattern(modRows, song.channels, song.volume, rng), song.channels);
    }
    for (int kind = 0; kind < waveCount; ++kind) {
        padToParagraph(out);
        pointHere(out, dataPointers[kind] + 1);
        for (std::int8_t value : synthesiseWave(kind))
            putByte(out, value + 128);
    }
    if (!writeBytes(path, out))
        return std::nullopt;
    return songSeconds(modRows, song);
}

namespace {

void putItHeader(std::string& out, const TrackerSong& song) {
    out += "IMPM";
    putText(out, "marble test song", 26);
    putLe16(out, 0x1004); // row highlights
    putLe16(out, orderCount(song));
    putLe16(out, 0); // no instruments: notes name samples
    putLe16(out, waveCount);
    putLe16(out, song.patterns);
    putLe16(out, 0x0214); // made by and for Impulse Tracker 2.14
    putLe16(out, 0x0214);
    putLe16(out, 0x09); // stereo, linear slides
    putLe16(out, 0);
    putByte(out, 128); // global volume
    putByte(out, 48);  // mixing volume
    putByte(out, song.speed);
    putByte(out, song.bpm);
    putByte(out, 128); // stereo separation
    putByte(out, 0);
    putLe16(out, 0); // no message
    putLe32(out, 0);
    putLe32(out, 0);
    for (int channel = 0; channel < 64; ++channel) // centred; an unused one disabled
        putByte(out, channel < song.channels ? 32 : 128 + 32);
    out.append(64, static_cast<char>(64)); // channel volumes
    for (int order = 0; order < orderCount(song); ++order)
        putByte(out, order);
}

void putItSample(std::string& out, int kind, std::size_t& dataPointer) {
    out += "IMPS";
    putText(out, "", 12);
    putByte(out, 0);
    putByte(out, 64);   // global volume
    putByte(out, 0x11); // has data, looped, 8-bit, mono
    putByte(out, sampleVolume);
    putText(out, "wave " + std::to_string(kind + 1), 26);
    putByte(out, 1); // signed
    putByte(out, 32);
    putLe32(out, waveLength);
    putLe32(out, 0);          // loop start
    putLe32(out, waveLength); // loop end
    putLe32(out, 8363);
    putLe32(out, 0); // no sustain loop
    putLe32(out, 0);
    dataPointer = out.size();
    putLe32(out, 0); // set once the data is placed
    putLe32(out, 0); // no vibrato
}

// Packed rows: the channel with a mask that says note, sample and volume follow; 0 ends a row.
void putItPattern(std::string& out, const std::vector<Cell>& cells, int rows, int channels) {
    std::size_t start = out.size();
    putLe16(out, 0); // the packed length, set below
    putLe16(out, rows);
    putLe32(out, 0);
    for (int row = 0; row < rows; ++row) {
        for (int channel = 0; channel < channels; ++channel) {
            const Cell& cell = cells[static_cast<std::size_t>(row * channels + channel)];
            if (cell.step < 0)
                continue;
            putByte(out, (channel + 1) | 0x80);
            putByte(out, 1 | 2 | 4);
            putByte(out, 48 + cell.step);
            putByte(out, cell.wave + 1);
            putByte(out, cell.param);
        }
        putByte(out, 0);
    }
    putLeAt(out, start, out.size() - start - 8, 2);
}

} // namespace

std::optional<double> writeIt(const std::string& path, const TrackerSong& song) {
    if (song.channels < 1 || song.channels > 64 || song.patterns < 1 || song.patterns > 200 ||
        song.rowsPerPattern < 1 || song.rowsPerPattern > 200 || !tempoFits(song))
        return std::nullopt;
    std::string out;
    putItHeader(out, song);
    std::size_t pointers = out.size(); // the samples', then the patterns'
    out.append(4u * static_cast<std::size_t>(waveCount + song.patterns), '\0');
    std::size_t dataPointers[waveCount];
    for (int kind = 0; kind < waveCount; ++kind) {
        putLeAt(out, pointers + 4u * static_cast<std::size_t>(kind), out.size(), 4);
        putItSample(out, kind, dataPointers[kind]);
    }
    std::mt19937 rng(song.seed);
    for (int pattern = 0; pattern < song.patterns; ++pattern) {
        putLeAt(out, pointers + 4u * static_cast<std::size_t>(waveCount + pattern), out.size(), 4);
        putItPattern(out, composePattern(song.rowsPerPattern, song.channels, song.volume, rng),
                     song.rowsPerPattern, song.channels);
    }
    for (int kind = 0; kind < waveCount; ++kind) {
        putLeAt(out, dataPointers[kind], out.size(), 4);
        for (std::int8_t value : synthesiseWave(kind))
            putByte(out, value);
    }
    if (!writeBytes(path, out))
        return std::nullopt;
    return songSeconds(song.rowsPerPattern, song);
}

} // namespace media
