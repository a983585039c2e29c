#pragma once
#include <optional>
#include <string>

struct PlayerState;

// The rules of the Favorite Options dialog, over what is playing: the station while one is on,
// otherwise the song on show.

// The painted title: the stream's while a station is on, else the song's.
const std::string& favoriteOptionsTitle(const PlayerState& st);
// The favourite count of what is playing; nothing when nothing valid plays (an empty library, a
// song the library no longer has, a station past the list).
std::optional<int> playingFavoriteCount(const PlayerState& st);
// A change of the count: the count taken as it is, the flag set for 1 or more; nowhere when
// nothing valid plays.
void setPlayingFavoriteCount(PlayerState& st, int count);
// The button's texts by filter.
const char* builtInFilterName(int builtInStation);
// The next of the three filters, acting from the next selection: the running song stays.
void cycleBuiltInFilter(PlayerState& st);
