#pragma once

struct PlayerState;

// Puts volume on the audible channel at once, ending a fade-in.
void applyVolume(PlayerState& st);
// Steps between the low and the high volume, sliding over two seconds.
void toggleVolumeLevel(PlayerState& st);
