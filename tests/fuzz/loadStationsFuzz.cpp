#include "fuzz/fuzzTarget.h"
#include "library/libraryState.h"
#include "library/stations.h"

FUZZ_TARGET(loadStations) {
    FuzzFile file("InternetStations.json", bytes);
    LibraryState st;
    loadStations(st, file.path());
    std::string first = fuzzSavedPath("first.json");
    saveStations(st, first);
    LibraryState again;
    loadStations(again, first);
    std::string second = fuzzSavedPath("second.json");
    saveStations(again, second);
    expectSameSaves(first, second);
}
