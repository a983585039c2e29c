#pragma once

struct PlayerState;

// Asks for the MIDI, AAC and FLAC decoders; a missing FLAC decoder is logged.
void loadAudioPlugins(PlayerState& st);
// Opens the default output device at 44100 Hz; on failure a message box, and silence after.
void initAudioAtStartup(PlayerState& st);
// Stops and frees the channels of both slots.
void stopAllStreams(PlayerState& st);
// Releases every channel, both fonts, the decoders and the device. The handles stay as they are.
void freeAudio(PlayerState& st);
// Brings the audio back as at start-up, with the soundfont set-up.
void initAudio(PlayerState& st);
// Frees everything, initialises again and starts playback anew.
void restartAudio(PlayerState& st);
