#pragma once
#include <string>
#include <vector>

struct PlayerState;

// Replaces the library by the scan of every root in directoryPaths, in order, and saves it.
void rebuildLibrary(PlayerState& st);

// The ".sf2" files directly in folder (exact case), in directory order.
std::vector<std::string> scanSoundFonts(const std::string& folder);
