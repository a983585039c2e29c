#pragma once
#include "display/geometry.h"

#include <string>

class Canvas;
struct DisplayState;

// Symbol glyphs by the codes the screen uses; an unknown code gives "?".
namespace glyph {
constexpr int playPause = 0;
constexpr int nextSong = 1;
constexpr int previousSong = 2;
constexpr int shuffle = 6;
constexpr int shuffleOff = 7;
constexpr int nextPlaylist = 8;
constexpr int previousPlaylist = 9;
constexpr int playlistSongs = 10;
constexpr int controller = 11;
constexpr int playlistRadio = 16;
constexpr int volumeHigh = 22;
constexpr int volumeLow = 23;
constexpr int power = 26;
constexpr int pageBack = 31;
constexpr int pageForward = 32;
constexpr int home = 41;
constexpr int figures = 42;
constexpr int lamp = 43;
constexpr int volume = 44;
constexpr int search = 45;
} // namespace glyph

// The UTF-8 text of a glyph code.
std::string glyphText(int code);

// The glyph in "Arial Unicode MS" at size x minScale, centred in its box (grid units); returns
// the box in pixels. A glyph is not cut at its box.
Box drawGlyph(Canvas& canvas, const DisplayState& st, int code, Box at, int size, Color color);

// A round button centred on cx, cy (pixels): an ellipse in colorA outlined in colorB, a smaller
// disc in colorB, and the glyph in colorA on it. Returns the inner disc's box.
Box drawCircleGlyph(Canvas& canvas, int code, int cx, int cy, int diameter, Color colorA,
                    Color colorB, int penWidth);

// The favourite heart at x, y (pixels), hollow for a count below 1, with the count beside it
// unless it is 0. Returns the box of both.
Box drawHeart(Canvas& canvas, const DisplayState& st, int x, int y, int count, Color color);
