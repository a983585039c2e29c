#include "fuzz/fuzzTarget.h"
#include "fuzz/smallLibrary.h"
#include "library/favorites.h"
#include "settings/exchangeFiles.h"

// The game's SongFavs.txt, merged into the library's flags as the player takes them back.
FUZZ_TARGET(readSongFavs) {
    FuzzFile file("SongFavs.txt", bytes);
    LibraryState st;
    addSmallLibrary(st);
    applyFavorites(st, readSongFavs(file.path()));
    recountLibrary(st);
}
