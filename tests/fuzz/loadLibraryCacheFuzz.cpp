#include "fuzz/fuzzTarget.h"
#include "library/cache.h"
#include "library/libraryState.h"
#include "library/model.h"

// As the start-up takes the cache: read (whatever was whole before a fault is kept), counted,
// and written back.
FUZZ_TARGET(loadLibraryCache) {
    FuzzFile file("musicLibraryCache.json", bytes);
    expectStableSaves(file.path(), [](const std::string& from, const std::string& to) {
        LibraryState st;
        st.libraryCachePath = from;
        st.playlists = loadLibraryCache(st);
        recountLibrary(st);
        st.libraryCachePath = to;
        writeLibraryCache(st);
    });
}
