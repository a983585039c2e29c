#pragma once

struct PlayerState;

// Opens the default output device at 44100 Hz; on failure a message box, and silence after.
void initAudioAtStartup(PlayerState& st);
// At start-up: the soundfont folder of config.json, else the game's own soundfont folder
// (remembered in config.json); a font drawn from it becomes the default of every MIDI stream.
void setUpStartupSoundFonts(PlayerState& st);
// The same without the fallback folder, after the audio was brought up again.
void setUpSoundFonts(PlayerState& st);
// Brings the audio back as at start-up, with the soundfont set-up.
void initAudio(PlayerState& st);
