#pragma once
#include <string>

struct InputState;

// Reads hotkeyConfig.json at path into hotkeyTable; false when it cannot be opened.
bool loadHotkeys(InputState& st, const std::string& path);
// Registers the chords of rows 0 to 29 with the window system.
void registerHotkeys(InputState& st);
// Gives the registered chords back to the window system.
void unregisterHotkeys(InputState& st);
