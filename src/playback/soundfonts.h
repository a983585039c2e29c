#pragma once

struct PlayerState;

// Finds the soundfont folder and makes a drawn font the default of every MIDI stream.
void setUpSoundFonts(PlayerState& st);
