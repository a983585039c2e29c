#pragma once

struct PlayerState;

// Checks that the MIDI, AAC and FLAC decoders are there; a missing FLAC decoder is logged.
void loadAudioPlugins(PlayerState& st);
// Opens the default output device at 44100 Hz; on failure a message box, and silence after.
void initAudioAtStartup(PlayerState& st);
// Stops every channel of both slots.
void stopAllStreams(PlayerState& st);
