#pragma once
#include "library/records.h"

#include <string>
#include <vector>

struct LibraryState;

// One playlist per folder directly under root, everything below it flattened into it. Files
// directly in root are only offered to the favourites. Adds to scanSongCount and
// scanPlaylistCount. A missing root gives an empty list and one line on the error stream.
std::vector<Playlist> scanRoot(LibraryState& st, const std::string& root);

// The current directory's "/Music", scanned as the one root without entering it in
// directoryPaths; replaces the library.
void scanDefaultMusicFolder(LibraryState& st);
std::string defaultMusicFolder();
