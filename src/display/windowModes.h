#pragma once

struct DisplayState;

// The two forms of the main window (framed with its menu bar, or bare) and its opacity. The form
// is the window's own and never saved; what the window system must do comes back as steps.

// What a mouse movement or a tick of timer 101 asks of the window.
struct FormSteps {
    bool killTimer = false;
    bool startTimer = false; // timer 101, 10 s
    bool toggle = false;
};
constexpr int borderlessDelayMs = 10000;

// A movement of the cursor over the client area, at its screen position: with the automatic mode
// on, a real movement restarts the 10 s count and brings back a frame that the count took away.
FormSteps cursorMoved(DisplayState& st, int screenX, int screenY);
// Timer 101: with the automatic mode on, the window goes bare unless a movement has just brought
// its frame back; the timer stops either way. Switched off, the timer fires on without effect.
FormSteps borderlessTimerFired(DisplayState& st);
// The Windows virtual-key codes the window modes answer to.
constexpr int virtualKeyAlt = 0x12;
constexpr int virtualKeyB = 0x42;
// Alt+B (B only; the keypad's 2 is no B here) in both forms, or Alt alone in the bare form, which
// is the way back to the frame. A key the keyboard repeats while held counts once.
bool systemKeyToggles(int virtualKey, bool altDown, bool borderless, bool autoRepeat);
// The opacity the Visual dialog may set: 80 at least, so the window never vanishes, and 255 at
// most, since the window system takes only the low byte.
int dialogOpacity(int alpha);
// The stored opacity as the start applies it: no floor, but never past 255 (a file may hold 300).
int startupOpacity(int alpha);
