#include "fuzz/fuzzTarget.h"
#include "input/hotkeys.h"
#include "input/inputState.h"

FUZZ_TARGET(loadHotkeys) {
    FuzzFile file("hotkeyConfig.json", bytes);
    expectStableSaves(file.path(), [](const std::string& from, const std::string& to) {
        InputState st;
        loadHotkeys(st, from);
        saveHotkeys(st, to);
    });
}
