#pragma once
#include <cstdint>
#include <optional>
#include <string>

namespace media {

// A tracker song made of synthesised 8-bit waves and seeded notes on every row. It has no jumps,
// breaks or tempo changes after its first row, so its true length is rows × speed × 2.5 / bpm.
// Limits by format: patterns .mod and .s3m 1..64, .xm 1..256, .it 1..200; channels .mod 4, 6, 8 or
// an even 10..32, .xm an even 2..32, .s3m 1..16, .it 1..64; rows per pattern .xm 1..256, .it
// 1..200, while a .mod or .s3m pattern always has 64.
struct TrackerSong {
    int patterns = 1; // played once each, in order
    int channels = 4;
    int rowsPerPattern = 64; // .xm and .it only
    int speed = 6;           // ticks per row, 1..31
    int bpm = 125;           // 32..255
    std::uint32_t seed = 1;  // chooses the notes
    double volume = 1.0;     // scales the volume of every note, (0, 1]
    bool noOrders = false;   // an empty order list: the patterns are there, nothing plays them
};

// Each writes the file and returns its true length in seconds, or nothing if the song does not fit
// the format or the file cannot be written.
std::optional<double> writeMod(const std::string& path, const TrackerSong& song = {});
std::optional<double> writeXm(const std::string& path, const TrackerSong& song = {});
// Scream Tracker 3 and Impulse Tracker: 8-bit samples, the notes' volumes in the volume column.
std::optional<double> writeS3m(const std::string& path, const TrackerSong& song = {});
std::optional<double> writeIt(const std::string& path, const TrackerSong& song = {});

} // namespace media
