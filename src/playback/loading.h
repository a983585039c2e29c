#pragma once
#include "library/records.h"
#include "playback/engine/handle.h"

struct PlayerState;

// Load the song (or the station) into the slot that is not audible; 0 on failure, logged.
ChannelHandle loadTracker(PlayerState& st, SongRef ref);
ChannelHandle loadStream(PlayerState& st, SongRef ref);
// The first sound with nothing playing: draws what plays and fades it in at its segment.
void startPlayback(PlayerState& st);
// Names the song a draw or a walk chose and its history row, so that a headless run shows it.
void logChosenSong(const PlayerState& st, SongRef ref);
