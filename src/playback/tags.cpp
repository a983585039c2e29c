#include "playback/tags.h"

#include "playback/playbackState.h"

// Station tags arrive with internet streams; a file stream has none to read.
void readStationTags(PlaybackState&, ChannelHandle) {}
