#pragma once
#include <string>

struct LibraryState;

// Reads InternetStations.json at path into radioStations; false when it cannot be opened, with
// the list unchanged.
bool loadStations(LibraryState& st, const std::string& path);
// Writes radioStations to path; "null" when there are none.
void saveStations(const LibraryState& st, const std::string& path);
