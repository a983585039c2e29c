#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Standard MIDI files for tests and benchmarks. A song is described in seconds, so a test knows
// when each note sounds; the writer places everything on the tick grid of its tempo map and
// reports the duration the file really has once rounded to ticks.
namespace media {

struct MidiNote {
    int channel = 0; // 0..15; 9 is the General MIDI drum channel ("channel 10")
    int key = 60;
    int velocity = 100;
    double start = 0.0;  // seconds
    double length = 0.5; // seconds
};

struct MidiTempo {
    double start = 0.0; // seconds; the first tempo should start at 0, else 120 bpm runs until it
    double bpm = 120.0;
};

struct MidiProgram {
    int channel = 0;
    int program = 0; // General MIDI program, 0-based
};

struct MidiSong {
    int division = 480;                // ticks per quarter note, 1..32767
    std::vector<MidiTempo> tempos;     // in time order
    std::vector<MidiProgram> programs; // sent at the start of each channel's track
    std::vector<MidiNote> notes;
    double end = 0.0; // seconds; every track ends here, or at the last note-off if that is later
    // Tracks of nothing but their end, after the channels' tracks: 65,535 tracks at most in all.
    int emptyTracks = 0;
};

// Writes a format 1 file: a tempo track, then one track per channel that has notes or a program.
// Returns the file's true duration in seconds, or nothing if the song does not fit the format or
// the file cannot be written.
std::optional<double> writeMidi(const std::string& path, const MidiSong& song);

// A small band that plays for `seconds`: piano chords, bass, strings and drums on channel 10, at
// 120 bpm and then laterBpm from the middle on. Something sounds at every moment but the last beat.
MidiSong bandSong(double seconds, double laterBpm = 84.0);

// Dense General MIDI for benchmarks: all 16 channels, each melodic one with its own program and a
// four-note chord on every beat that overlaps the next, drums in eighths; the same seed gives the
// same song.
MidiSong denseGeneralMidiSong(double seconds, std::uint32_t seed = 1);

} // namespace media
