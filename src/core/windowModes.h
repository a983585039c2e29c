#pragma once

struct PlayerState;

// The main window's two forms and its opacity, carried out by the host.

// Bare without frame and menu bar, or framed again; the outer size and place stay, and the
// resize that follows gives the screen its new scales.
void toggleBorderless(PlayerState& st);
// The Visual dialog's opacity: at least 80, stored and applied.
void setWindowOpacity(PlayerState& st, int alpha);
// The cursor moved over the client area, at this screen position.
void onMouseMoved(PlayerState& st, int screenX, int screenY);
void onBorderlessTimer(PlayerState& st);
// A key pressed with Alt down, or Alt itself; true when it changed the form. The window takes
// every such key, so no menu opens by keyboard.
bool onSystemKey(PlayerState& st, int virtualKey, bool altDown, bool autoRepeat);
