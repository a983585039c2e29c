#pragma once
#include "library/records.h"

#include <string>
#include <vector>

struct SettingsState;

// Writes the library, favourites, music folders and soundfont folder as text into the game
// folder, each file whole; nothing (not even the favourites' rebuild) when marbleTunnelPath is
// empty. A file that cannot be written is skipped without a line.
void exportForGame(SettingsState& st);
// The favourites the game wrote (SongFavs.txt) as rows to merge by file name, up to the first
// line that does not start with four integers; none when the file cannot be read.
std::vector<FavoriteEntry> readSongFavs(const std::string& path);
