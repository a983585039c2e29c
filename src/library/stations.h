#pragma once
#include <string>

struct PlayerState;

// Reads InternetStations.json at path into radioStations; false when it cannot be opened, with
// the list unchanged.
bool loadStations(PlayerState& st, const std::string& path);
// Writes radioStations to path; "null" when there are none.
void saveStations(const PlayerState& st, const std::string& path);
