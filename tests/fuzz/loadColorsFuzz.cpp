#include "fuzz/fuzzTarget.h"
#include "settings/configFile.h"

FUZZ_TARGET(loadColors) {
    FuzzFile file("colors.json", bytes);
    expectStableSaves(file.path(), [](const std::string& from, const std::string& to) {
        saveColors(loadColors(from), to);
    });
}
