#pragma once
#include <cstdint>
#include <span>
#include <vector>

// The timing of a Standard MIDI File, read from its bytes alone. FluidSynth's player only knows a
// file's length once it plays it, so the length and the frame-to-tick conversion of a seek come
// from here: a tempo map over all tracks, and the end at the last event of any track,
// end-of-track included. Any bytes at all may come in; damage is a MidiProblem, never a crash.

struct TempoPoint {
    std::uint64_t tick = 0;
    double seconds = 0.0;
    double secondsPerTick = 0.0;
};

struct MidiTiming {
    std::vector<TempoPoint> tempoMap; // starts at tick 0
    std::uint64_t endTick = 0;

    // Only on a timing read without a problem, whose map is never empty.
    double secondsAt(double tick) const;
    double tickAt(double seconds) const;
};

enum class MidiProblem { None, NotMidi, Smpte };

// The timing, or problem set and an empty timing when the bytes are no MIDI file that FluidSynth
// plays (Smpte: its time counts frames, which FluidSynth's player refuses).
MidiTiming readMidiTiming(std::span<const unsigned char> bytes, MidiProblem& problem);
