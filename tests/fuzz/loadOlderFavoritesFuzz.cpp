#include "fuzz/fuzzTarget.h"
#include "fuzz/smallLibrary.h"
#include "library/favorites.h"

// favoriteMusic.cif in the data folder, read as a rescan does and applied to the library.
FUZZ_TARGET(loadOlderFavorites) {
    FuzzFile file("favoriteMusic.cif", bytes);
    LibraryState st;
    addSmallLibrary(st);
    st.dataDirectory = fuzzFolder();
    loadOlderFavorites(st);
    applyFavorites(st, st.favorites);
    recountLibrary(st);
}
