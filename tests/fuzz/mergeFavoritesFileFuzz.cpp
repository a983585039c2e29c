#include "fuzz/fuzzTarget.h"
#include "fuzz/smallLibrary.h"
#include "library/favorites.h"

// As a scan meets a favorite.json: merged over the favourites so far, then applied.
FUZZ_TARGET(mergeFavoritesFile) {
    FuzzFile file("favorite.json", bytes);
    expectStableSaves(file.path(), [](const std::string& from, const std::string& to) {
        LibraryState st;
        addSmallLibrary(st);
        mergeFavoritesFile(st, from);
        applyFavorites(st, st.favorites);
        saveFavoritesFile(st, to);
    });
}
