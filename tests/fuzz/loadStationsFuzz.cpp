#include "fuzz/fuzzTarget.h"
#include "library/libraryState.h"
#include "library/stations.h"

FUZZ_TARGET(loadStations) {
    FuzzFile file("InternetStations.json", bytes);
    expectStableSaves(file.path(), [](const std::string& from, const std::string& to) {
        LibraryState st;
        loadStations(st, from);
        saveStations(st, to);
    });
}
