#pragma once
#include "playback/engine/handle.h"
#include "playback/loudnessCache.h"

struct LoudnessJob;
struct PlaybackState;

// Loudness levelling: each song is played near one loudness by a gain of its own in front of the
// volume, which stays what the user set. The user-interface thread's side.

// The ReplayGain 2.0 reference loudness, and the true peak no song is raised above.
constexpr double levellingTargetLufs = -18.0;
constexpr double levellingPeakCeilingDb = -1.0;
// A value that arrives for the song on air moves its gain over this long.
constexpr int levellingMoveMs = 2000;

struct LevelGain {
    double decibels = 0.0;
    bool measured = false;   // the song's own value (silence and failures count as measured)
    bool heldByPeak = false; // the target would have raised its peak above the ceiling
};

// The gain of a value: the target less the loudness, no more than its true peak allows; none for
// silence or a file that could not be decoded.
LevelGain gainOfRecord(const LoudnessRecord& record);
// The value that still holds for the song (and font), or null: a file changed since is measured
// again.
const LoudnessRecord* currentRecord(const LoudnessTable& values, const LoudnessJob& job);
// The gain for the song: its own value, else the median gain of the measured songs of its font
// (MIDI) or of its family, never above 0 dB.
LevelGain levelFor(const LoudnessTable& values, const LoudnessJob& job);

// The incoming song, after its font was chosen and before it is heard: its gain, and the
// measuring thread told which song is on air. Stations are not levelled.
void levelIncoming(PlaybackState& st, ChannelHandle handle);
// After a soundfont step by hand: the audible MIDI song moves to its new pair's gain.
void relevelAudible(PlaybackState& st);
// The switch, saved at once. Off puts every channel at 0 dB through the short ramp; on levels
// the audible song.
void setLevelling(PlaybackState& st, bool on);
// levelling.json in the data folder; on when missing or damaged.
void loadLevellingSwitch(PlaybackState& st);
