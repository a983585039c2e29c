#pragma once

struct PlayerState;

// The action table's two routes, on the user-interface thread: a hotkey's id, and a controller
// input's row with currentController already set. Ids without an action do nothing.
void runKeyboardAction(PlayerState& st, int id);
void runControllerAction(PlayerState& st, int id);

// Registers the chords of rows 0 to 29 with the window system, an empty row too; a chord that
// another program holds simply never fires.
void registerHotkeys(PlayerState& st);
// Gives the chords of rows 0 to 29 back.
void unregisterHotkeys(PlayerState& st);
// The Hotkey dialog's Save: the table's chords anew.
void reregisterHotkeys(PlayerState& st);
