#pragma once
#include "library/records.h"
#include "playback/engine/handle.h"

struct PlaybackState;

// Load the song (or the station) into the slot that is not audible; 0 on failure, logged.
ChannelHandle loadTracker(PlaybackState& st, SongRef ref);
ChannelHandle loadStream(PlaybackState& st, SongRef ref);
