#include "input/hotkeys.h"

#include "input/inputState.h"

// Key bindings come with the action table; until then the table keeps its empty rows.
bool loadHotkeys(InputState&, const std::string&) {
    return false;
}

void registerHotkeys(InputState&) {}

void unregisterHotkeys(InputState&) {}
