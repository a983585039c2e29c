#include "fuzz/fuzzTarget.h"
#include "input/hotkeys.h"
#include "input/inputState.h"

FUZZ_TARGET(loadHotkeys) {
    FuzzFile file("hotkeyConfig.json", bytes);
    InputState st;
    loadHotkeys(st, file.path());
    std::string first = fuzzSavedPath("first.json");
    saveHotkeys(st, first);
    InputState again;
    loadHotkeys(again, first);
    std::string second = fuzzSavedPath("second.json");
    saveHotkeys(again, second);
    expectSameSaves(first, second);
}
