#include "update/versionCheck.h"

#include "core/playerState.h"

// The version request arrives with the update dialog; until then there is nothing to ask.
void runStartupVersionCheck(PlayerState&) {}
