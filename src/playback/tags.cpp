#include "playback/tags.h"

#include "core/playerState.h"

// Station tags arrive with internet streams; a file stream has none to read.
void readStationTags(PlayerState&, ChannelHandle) {}
