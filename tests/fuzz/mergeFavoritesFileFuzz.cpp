#include "fuzz/fuzzTarget.h"
#include "fuzz/smallLibrary.h"
#include "library/favorites.h"

namespace {

// As a scan meets a favorite.json: merged over the favourites so far, then applied.
std::string mergedAndSaved(const std::string& path, const std::string& savedAs) {
    LibraryState st;
    addSmallLibrary(st);
    mergeFavoritesFile(st, path);
    applyFavorites(st, st.favorites);
    saveFavoritesFile(st, savedAs);
    return savedAs;
}

} // namespace

FUZZ_TARGET(mergeFavoritesFile) {
    FuzzFile file("favorite.json", bytes);
    std::string first = mergedAndSaved(file.path(), fuzzSavedPath("first.json"));
    expectSameSaves(first, mergedAndSaved(first, fuzzSavedPath("second.json")));
}
