#pragma once

struct PlayerState;

// At start-up: the folder of config.json, else the game's own soundfont folder (remembered in
// config.json); a font drawn from it becomes the default of every MIDI stream.
void setUpStartupSoundFonts(PlayerState& st);
// The same without the fallback folder, after the audio was brought up again.
void setUpSoundFonts(PlayerState& st);
// After a new MIDI song has counted one more: changes the font every
// songsBeforeSoundfontChange songs.
void rotateSoundFont(PlayerState& st);
