#pragma once

struct InputState;

// The type-ahead search's keys, read from the global key state on each 30 ms tick while the
// search is open.
void pollSearchKeys(InputState& st);
