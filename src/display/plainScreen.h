#pragma once

class Canvas;
struct DisplayState;

// The window until the painted player screen exists: the background, an LCD strip, the
// headline and the title of the song on show.
void paintPlainScreen(DisplayState& st, Canvas& canvas);
