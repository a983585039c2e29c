#pragma once

struct PlaybackState;

enum class SoundFontLoad { Loaded, NoFonts, Failed };

// Lists the soundfonts of soundFontDirectoryPath into soundFonts; false when there are none.
bool findSoundFonts(PlaybackState& st);
// Draws one of the fonts found and makes it the default of every MIDI stream to come. The caller
// tells the user when there was none to draw or it did not load.
SoundFontLoad loadDrawnSoundFont(PlaybackState& st);
// After a new MIDI song has counted one more: changes the font every
// songsBeforeSoundfontChange songs.
void rotateSoundFont(PlaybackState& st);
