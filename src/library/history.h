#pragma once
#include <string>

struct LibraryState;

// Reads "Song History.json" at path into songHistory; a missing file leaves it as it is, a row
// that cannot be read is dropped.
void loadSongHistory(LibraryState& st, const std::string& path);
// Writes the newest 10,000 rows at most ("null" without rows).
void saveSongHistory(const LibraryState& st, const std::string& path);
// Empties the history; the file follows at exit.
void clearSongHistory(LibraryState& st);
