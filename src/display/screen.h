#pragma once

class Canvas;
struct DisplayState;

// The paint pass up to its end test: the background, the LCD page, the bars, the title box and
// the glyph row, recording where each clickable thing was drawn. It reads the playing position
// first, so the end test that follows sees it.
void paintScreen(Canvas& canvas, DisplayState& st);
