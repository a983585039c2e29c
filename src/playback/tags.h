#pragma once
#include "playback/engine/handle.h"

struct PlaybackState;

// Reads the station's name, genre and running title from a stream's tags.
void readStationTags(PlaybackState& st, ChannelHandle handle);
