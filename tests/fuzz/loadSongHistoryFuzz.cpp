#include "fuzz/fuzzTarget.h"
#include "library/history.h"
#include "library/libraryState.h"

FUZZ_TARGET(loadSongHistory) {
    FuzzFile file("Song History.json", bytes);
    LibraryState st;
    loadSongHistory(st, file.path());
    std::string first = fuzzSavedPath("first.json");
    saveSongHistory(st, first);
    LibraryState again;
    loadSongHistory(again, first);
    std::string second = fuzzSavedPath("second.json");
    saveSongHistory(again, second);
    expectSameSaves(first, second);
}
