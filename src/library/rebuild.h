#pragma once
#include "library/records.h"

#include <string>
#include <vector>

struct LibraryState;

// Replaces the library by the scan of every root in directoryPaths, in order.
void scanAllRoots(LibraryState& st);

// The root folders a library was scanned from, as far as its song paths tell (a song lies in
// ROOT/ALBUM/...), in the order of their first playlist.
std::vector<std::string> rootsOfLibrary(const std::vector<Playlist>& playlists);

// The ".sf2" files directly in folder (exact case), in directory order.
std::vector<std::string> scanSoundFonts(const std::string& folder);
