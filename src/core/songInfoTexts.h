#pragma once
#include "display/geometry.h"

#include <array>
#include <string>

struct PlayerState;

// One painted line of the Song Information window: its text and box in client pixels.
struct SongInfoLine {
    std::string text;
    Box box;
    bool centered;
};

// The eight lines in their paint order, read from the state as it is now; the first counts the
// songs of the playlists themselves, the others the counters of the last recount.
std::array<SongInfoLine, 8> songInfoLines(const PlayerState& st);

// The window's 100 ms tick: whether something on show changed since a window last looked, which
// the looking clears.
bool takeSongInfoChange(PlayerState& st);
