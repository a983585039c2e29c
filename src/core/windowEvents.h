#pragma once

class Canvas;
struct PlayerState;

// The main window's messages, handed over by the platform host on the user-interface thread.
void onTimer(PlayerState& st, int id);
void onPaint(PlayerState& st, Canvas& canvas);
void onResize(PlayerState& st, int width, int height);
// x and y are client coordinates in pixels.
void onLeftPress(PlayerState& st, int x, int y);
void onRightPress(PlayerState& st, int x, int y);
