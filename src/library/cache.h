#pragma once
#include "library/records.h"

#include <vector>

struct LibraryState;

// The library as musicLibraryCache.json holds it; empty when the file is missing.
std::vector<Playlist> loadLibraryCache(LibraryState& st);
// Writes the library to libraryCachePath (the settings go with it: saveLibraryCache).
void writeLibraryCache(const LibraryState& st);
