#pragma once
#include "library/records.h"

struct RadioState;

// What the next transition plays: the history walk, a search row, a requested song, or a new
// selection, in that order.
SongRef chooseTransitionSource(RadioState& st);
// One step round the circle of modes: Radio, Top 40, Undiscovered, each station, each playlist,
// Radio. The transport follows each step with a transition.
void stepModeForward(RadioState& st);
void stepModeBack(RadioState& st);
// One row back through the history; false at the first row, where nothing happens.
bool stepBackInHistory(RadioState& st);
// After the streams of a transition have started: a walk that has reached the newest row ends,
// so the next transition selects anew.
void endHistoryWalkAtLastRow(RadioState& st);
