#pragma once
#include "display/geometry.h"

#include <optional>
#include <string>

constexpr int normalWeight = 400;
constexpr int boldWeight = 700;

// A font by family, size and weight. The size is the cell height in pixels, ascent plus descent,
// as the window system the screen was laid out for measures a font.
struct Font {
    std::string family;
    int size = 0;
    int weight = normalWeight;
    friend bool operator==(const Font&, const Font&) = default;
};

enum class TextAlign { Left, Center };

struct TextStyle {
    Font font;
    Color color;
    TextAlign align = TextAlign::Left;
    bool middle = false;  // the text block centred vertically in its box
    bool wrapped = false; // broken at words; otherwise one line
};

// What a shape is filled with and outlined by; either may be left out.
struct Paint {
    std::optional<Color> fill;
    std::optional<Color> pen;
    int penWidth = 1;
};

// How a tiling meets the far edges of its area: the last tiles cut, or squeezed into the room
// left, the source always the whole bitmap.
enum class TileEdge { Clip, Squeeze };

// What the paint pass draws on: the Qt host's back buffer in the program, a recorder in tests.
// Text is UTF-8; bytes that are not valid UTF-8 read as Latin-1, as station tags may come.
// Coordinates are pixels; nothing draws outside the canvas, and a box of no area draws nothing.
class Canvas {
  public:
    virtual ~Canvas() = default;
    virtual int width() const = 0;
    virtual int height() const = 0;
    virtual void fillRect(const Box& box, Color color) = 0;
    // An outline inside the box, penWidth pixels wide, nothing filled.
    virtual void outlineRect(const Box& box, Color color, int penWidth) = 0;
    // Text in its box, cut at the box's edges. A font that cannot be made leaves it out.
    virtual void drawText(const Box& box, const std::string& text, const TextStyle& style) = 0;
    // The advance width of text on one line.
    virtual int textWidth(const std::string& text, const Font& font) = 0;
    // The bitmap at its natural size, repeated from the area's top left corner, with a constant
    // alpha of 0 to 255. An unknown id draws nothing.
    virtual void tileBitmap(int bitmapId, const Box& area, int alpha, TileEdge edge) = 0;
    // Anti-aliased: a rectangle whose corners are quarter ellipses of the given diameter, and an
    // ellipse in its box. The pen is centred on the outline.
    virtual void roundedRect(const Box& box, int diameter, const Paint& paint) = 0;
    virtual void ellipse(const Box& box, const Paint& paint) = 0;
    // Until clearClip, drawing stays inside a rounded rectangle.
    virtual void clipRounded(const Box& box, int diameter) = 0;
    virtual void clearClip() = 0;
};
