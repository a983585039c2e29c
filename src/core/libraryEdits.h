#pragma once
#include <cstddef>

struct PlayerState;

// Writes the library cache, then the music settings with it.
void saveLibraryCache(PlayerState& st);
// Replaces the library by the scan of every root in directoryPaths, then saves it.
void rebuildLibrary(PlayerState& st);
// The current directory's "/Music" as the one root, without entering it in directoryPaths; the
// library is replaced and saved.
void scanDefaultFolder(PlayerState& st);

// The Folder dialog's "Scan": the ratios back to their first-start values (rawFav keeps its
// own), the library scanned anew from directoryPaths with every play count at 0, the favourites
// carried over by file name, the library and settings saved, and a new song started. Nothing
// happens without a root folder.
void rescanLibrary(PlayerState& st);

// The Folder dialog's "Delete Path": removes the root at index and rebuilds the library from the
// others, favourites carried over by file name. The screen reads nothing of the song on show
// until the dialog closes.
void deleteLibraryPath(PlayerState& st, std::size_t index);
