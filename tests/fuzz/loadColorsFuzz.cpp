#include "fuzz/fuzzTarget.h"
#include "settings/configFile.h"

FUZZ_TARGET(loadColors) {
    FuzzFile file("colors.json", bytes);
    std::string first = fuzzSavedPath("first.json");
    saveColors(loadColors(file.path()), first);
    std::string second = fuzzSavedPath("second.json");
    saveColors(loadColors(first), second);
    expectSameSaves(first, second);
}
