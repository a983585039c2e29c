#pragma once
#include "library/records.h"

#include <string>
#include <vector>

struct PlayerState;

// Called by the scan for every regular file: a file named exactly "favorite.json" brings its rows
// into favorites.
void checkFavoriteFile(PlayerState& st, const std::string& path);
// Sets the library's favourite flags from rows, matched by file name.
void applyFavorites(PlayerState& st, const std::vector<FavoriteEntry>& rows);
// Makes favorites anew from the library's flags.
void rebuildFavorites(PlayerState& st);
