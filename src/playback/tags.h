#pragma once
#include "playback/engine/handle.h"

struct PlayerState;

// Reads the station's name, genre and running title from a stream's tags.
void readStationTags(PlayerState& st, ChannelHandle handle);
