#pragma once
#include "library/records.h"

#include <string>
#include <vector>

struct LibraryState;

// Makes favorites anew from the library's flags: the library is the truth.
void rebuildFavorites(LibraryState& st);
// Writes favorites as favorite.json; "null" when there are none.
void saveFavoritesFile(const LibraryState& st, const std::string& path);
// Adds the rows of a favorite.json whose path (ignoring ASCII case) is not in favorites yet.
void mergeFavoritesFile(LibraryState& st, const std::string& path);
// Called by the scan for every regular file: a file named exactly "favorite.json" is merged.
void checkFavoriteFile(LibraryState& st, const std::string& path);
// Replaces favorites by the older favoriteMusic.cif of the data folder, when there is one.
void loadOlderFavorites(LibraryState& st);
// Sets the library's flags from rows, matched by file name ignoring ASCII case: in every
// playlist, the first song of that name. Nothing is cleared.
void applyFavorites(LibraryState& st, const std::vector<FavoriteEntry>& rows);
// Clears the favourite state of every station, playlist and song, and empties favorites.
void clearAllFavorites(LibraryState& st);

// A press on the heart counts the favourite up or down; a song's count stops at 0, while a
// playlist's or a station's may go below it.
void countFavoriteUp(Song& song);
void countFavoriteDown(Song& song);
void countFavoriteUp(Playlist& playlist);
void countFavoriteDown(Playlist& playlist);
void countFavoriteUp(RadioStation& station);
void countFavoriteDown(RadioStation& station);
