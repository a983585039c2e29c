#include "playback/audioSetup.h"

#include "core/playerState.h"

// The audio engine is not there yet: no decoder to check, no device to open, nothing to stop.
void loadAudioPlugins(PlayerState&) {}

void initAudioAtStartup(PlayerState&) {}

void stopAllStreams(PlayerState&) {}
