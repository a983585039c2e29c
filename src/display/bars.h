#pragma once
#include "display/geometry.h"

class Canvas;
struct DisplayState;

// A bar of a figures page at y (grid units): x 170, width 300, height 8, filled to the fraction,
// clamped to 0 to 1. Returns its box in pixels.
Box drawBar(Canvas& canvas, const DisplayState& st, int y, Color fill, Color back, float fraction);

// The thin bar along the top, also the seek bar, and the upright volume bar, in pixels.
Box positionBarBox(const DisplayState& st);
Box volumeBarBox(const DisplayState& st);

// The thin bar along the top: how far the song has played, with its segment marked.
void drawPositionBar(Canvas& canvas, const DisplayState& st);
// The upright bar at the right: the volume, with the two presets marked. Records its rectangle.
void drawVolumeBar(Canvas& canvas, DisplayState& st);
