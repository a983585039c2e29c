#include "fuzz/fuzzTarget.h"
#include "library/history.h"
#include "library/libraryState.h"

FUZZ_TARGET(loadSongHistory) {
    FuzzFile file("Song History.json", bytes);
    expectStableSaves(file.path(), [](const std::string& from, const std::string& to) {
        LibraryState st;
        loadSongHistory(st, from);
        saveSongHistory(st, to);
    });
}
