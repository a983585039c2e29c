#pragma once

struct PlayerState;

// The action table's two routes, on the user-interface thread: a hotkey's id, and a controller
// input's row with currentController already set. Ids without an action do nothing.
void runKeyboardAction(PlayerState& st, int id);
void runControllerAction(PlayerState& st, int id);
