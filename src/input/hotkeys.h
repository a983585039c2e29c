#pragma once
#include <string>

struct PlayerState;

// Reads hotkeyConfig.json at path into hotkeyTable; false when it cannot be opened.
bool loadHotkeys(PlayerState& st, const std::string& path);
// Registers the chords of rows 0 to 29 with the window system.
void registerHotkeys(PlayerState& st);
// Gives the registered chords back to the window system.
void unregisterHotkeys(PlayerState& st);
