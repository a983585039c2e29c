#pragma once

#include "display/geometry.h"

class Canvas;
struct PlayerState;

// Asks for a repaint of a box of the client area, without erasing it first.
void invalidateBox(const Box& box);

// Timer 3 polls every 30 ms while it has work: the game link, an open controller, the search
// keys. Without any, it polls once a second, which still finds a controller plugged in, and timer
// 2 runs only while a volume latch is held: an idle player's event loop then wakes a few times a
// second instead of 43, its largest cost. Run at every tick of timers 1 to 3 and at start-up; what
// gives timers 2 or 3 work (a latch, the search page) runs it at once.
constexpr int pollPeriodBusy = 30;
constexpr int pollPeriodIdle = 1000;
void schedulePolling(PlayerState& st);

// The main window's messages, handed over by the platform host on the user-interface thread.
void onTimer(PlayerState& st, int id);
// The paint pass composes the window on the canvas; once the canvas is let go and before the
// frame is shown, afterPaint runs the end test, which may start the next song.
void onPaint(PlayerState& st, Canvas& canvas);
void afterPaint(PlayerState& st);
