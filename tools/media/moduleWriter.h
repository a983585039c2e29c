#pragma once
#include <cstdint>
#include <optional>
#include <string>

namespace media {

// A tracker song made of synthesised 8-bit waves and seeded notes on every row. It has no jumps,
// breaks or tempo changes after its first row, so its true length is rows × speed × 2.5 / bpm.
struct TrackerSong {
    int patterns = 1;        // played once each, in order; .mod: 1..64, .xm: 1..256
    int channels = 4;        // .mod: 4, 6, 8 or an even 10..32; .xm: an even 2..32
    int rowsPerPattern = 64; // .xm only, 1..256: a .mod pattern always has 64 rows
    int speed = 6;           // ticks per row, 1..31
    int bpm = 125;           // 32..255
    std::uint32_t seed = 1;  // chooses the notes
    double volume = 1.0;     // scales the volume of every note, (0, 1]
};

// Each writes the file and returns its true length in seconds, or nothing if the song does not fit
// the format or the file cannot be written.
std::optional<double> writeMod(const std::string& path, const TrackerSong& song = {});
std::optional<double> writeXm(const std::string& path, const TrackerSong& song = {});

} // namespace media
