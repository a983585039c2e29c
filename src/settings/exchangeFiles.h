#pragma once
#include "library/records.h"

#include <string>
#include <vector>

struct SettingsState;

// Writes the library, favourites, music folders and soundfont folder as text for the game.
void exportForGame(SettingsState& st);
// The favourites the game wrote (SongFavs.txt) as rows to merge by file name; none when the file
// cannot be read.
std::vector<FavoriteEntry> readSongFavs(const std::string& path);
