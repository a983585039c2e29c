#include "playback/soundfonts.h"

#include "core/playerState.h"

// MIDI needs the audio engine; until it is there no font is looked for.
void setUpSoundFonts(PlayerState&) {}
