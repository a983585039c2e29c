#pragma once
#include "library/records.h"

struct PlayerState;

// What the next transition plays: the history walk, a search row, a requested song, or a new
// selection, in that order.
SongRef chooseTransitionSource(PlayerState& st);
// The circle of modes: Radio, Top 40, Undiscovered, each station, each playlist, Radio. Each
// step ends in a transition.
void nextPlaylist(PlayerState& st);
void previousPlaylist(PlayerState& st);
// One step back through the history, with a transition; nothing at the first row.
void previousSong(PlayerState& st);
