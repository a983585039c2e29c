#pragma once

struct PlaybackState;

// Asks for the MIDI, AAC and FLAC decoders; a missing FLAC decoder is logged.
void loadAudioPlugins();
// Stops and frees the channels of both slots.
void stopAllStreams(PlaybackState& st);
// Releases every channel, both fonts, the decoders and the device. The handles stay as they are.
void freeAudio(PlaybackState& st);
// Stops and frees the channels of both slots as streams, both fonts, the decoders and the device:
// the first half of a restart of the audio.
void releaseAudio(PlaybackState& st);
