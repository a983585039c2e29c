#pragma once
#include <string>

struct PlayerState;

// Reads "Song History.json" at path into songHistory.
void loadSongHistory(PlayerState& st, const std::string& path);
