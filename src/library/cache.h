#pragma once
#include "library/records.h"

#include <vector>

struct PlayerState;

// The library as musicLibraryCache.json holds it; empty when the file is missing.
std::vector<Playlist> loadLibraryCache(PlayerState& st);
// Writes the library to libraryCachePath, then the music settings.
void saveLibraryCache(PlayerState& st);
