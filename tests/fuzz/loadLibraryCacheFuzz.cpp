#include "fuzz/fuzzTarget.h"
#include "library/cache.h"
#include "library/libraryState.h"
#include "library/model.h"

namespace {

// As the start-up takes the cache: read (whatever was whole before a fault is kept), counted,
// and written back.
std::string loadedAndSaved(const std::string& path, const std::string& savedAs) {
    LibraryState st;
    st.libraryCachePath = path;
    st.playlists = loadLibraryCache(st);
    recountLibrary(st);
    st.libraryCachePath = savedAs;
    writeLibraryCache(st);
    return savedAs;
}

} // namespace

FUZZ_TARGET(loadLibraryCache) {
    FuzzFile file("musicLibraryCache.json", bytes);
    std::string first = loadedAndSaved(file.path(), fuzzSavedPath("first.json"));
    expectSameSaves(first, loadedAndSaved(first, fuzzSavedPath("second.json")));
}
