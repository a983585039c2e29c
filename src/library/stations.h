#pragma once
#include <string>

struct PlayerState;

// Reads InternetStations.json at path into radioStations; false when it cannot be opened.
bool loadStations(PlayerState& st, const std::string& path);
