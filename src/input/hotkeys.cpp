#include "input/hotkeys.h"

#include "core/playerState.h"

// Key bindings come with the action table; until then the table keeps its empty rows.
bool loadHotkeys(PlayerState&, const std::string&) {
    return false;
}

void registerHotkeys(PlayerState&) {}

void unregisterHotkeys(PlayerState&) {}
