#pragma once
#include "display/geometry.h"

#include <string>

class Canvas;
struct DisplayState;

// The framed shapes and text boxes of the screen. Each returns the box it drew, in pixels.

// A rounded rectangle in pixels: the corners' diameter is twice the smaller of radius and half the
// height. With a textureAlpha above 0 the LCD texture is tiled over it, inside its rounded edge.
Box drawRoundedPanel(Canvas& canvas, const DisplayState& st, Box at, int radius, Color pen,
                     int penWidth, Color fill, int textureAlpha);

// A rounded panel in grid units with one line of text centred in it, shrunk a pixel at a time from
// size x minScale until it fits the width; at 1 pixel it is drawn whether it fits or not.
Box drawFittedPanel(Canvas& canvas, const DisplayState& st, const std::string& text, Box at,
                    int size, bool bold, Color pen, Color textColor, Color fill);

struct TextBoxStyle {
    int size = 12;
    int border = 0;     // above 0: an outline of at least one pixel, nothing filled
    bool scaled = true; // box and size in grid units; otherwise in pixels
    bool bold = false;
    bool centered = false;
    bool middle = false; // the text block centred vertically
    bool wrapped = false;
    Color pen{};
    Color text{};
};
// Text in "Arial" without a panel, cut at its box.
Box drawTextBox(Canvas& canvas, const DisplayState& st, const std::string& text, Box at,
                const TextBoxStyle& style);

// A cell of a list page in grid units: a plain rectangle, the LCD texture over it when alpha is
// not 0, the text bold and centred, shrunk to fit, and an outline.
Box drawCell(Canvas& canvas, const DisplayState& st, const std::string& text, Box at, int alpha,
             Color pen, Color textColor, Color fill);
