#pragma once
#include "playback/engine/handle.h"

struct PlayerState;

// Every change of song: chooses what plays, fades the old song out and the new one in over
// FADE_DURATION_MS, and leaves a worker to clear the old slot. During a fade it cuts hard.
void startTransition(PlayerState& st);
// Puts volume on the audible channel at once, ending a fade-in.
void applyVolume(PlayerState& st);
// Steps between the low and the high volume, sliding over two seconds.
void toggleVolumeLevel(PlayerState& st);
// Pauses the first playing channel of the family's pair, or resumes the first paused one.
void togglePause(PlayerState& st);
