#pragma once
#include "playback/soundfonts.h"

struct PlayerState;

// Opens the default output device at 44100 Hz; on failure a message box, and silence after.
void initAudioAtStartup(PlayerState& st);
// At start-up: the soundfont folder of config.json, else the game's own soundfont folder
// (remembered in config.json); a font drawn from it becomes the default of every MIDI stream.
void setUpStartupSoundFonts(PlayerState& st);
// Brings the audio back as at start-up, with the soundfont set-up (without the fallback folder).
void initAudio(PlayerState& st);
// After the Next slot refused a font: the soundfont folder of config.json, listed anew, and a
// font drawn from it for musicStream.
void rescanSoundFonts(PlayerState& st);
// The hand step (+1 the next font, -1 the previous one): both slots change font at once.
void stepSoundFont(PlayerState& st, int step);
// Shows the box a soundfont step left, if any.
void showFontBox(FontBox box);
