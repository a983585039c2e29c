#include "display/glyphs.h"

#include "display/canvas.h"
#include "display/displayState.h"
#include "display/layout.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

// The characters as UTF-8, as the canvas takes its text.
constexpr std::array<std::pair<int, const char*>, 20> glyphCodes{{
    {glyph::playPause, "\u23EF"},
    {glyph::nextSong, "\u23ED"},
    {glyph::previousSong, "\u23EE"},
    {glyph::shuffle, "\U0001F500"},
    {glyph::shuffleOff, "\u274C"},
    {glyph::nextPlaylist, "\u2191"},
    {glyph::previousPlaylist, "\u2193"},
    {glyph::playlistSongs, "\U0001F4FB"},
    {glyph::controller, "\U0001F3AE"},
    {glyph::playlistRadio, "\U0001F4F6"},
    {glyph::volumeHigh, "\U0001F50A"},
    {glyph::volumeLow, "\U0001F508"},
    {glyph::power, "\u26A1"},
    {glyph::pageBack, "\u2190"},
    {glyph::pageForward, "\u2192"},
    {glyph::home, "\U0001F518"},
    {glyph::figures, "\u26ED"},
    {glyph::lamp, "\U0001F4A1"},
    {glyph::volume, "\U0001F509"},
    {glyph::search, "\U0001F50D"},
}};

constexpr const char* hollowHeart = "\u2661";
constexpr const char* fullHeart = "\u2665";

// Centred on its box but free to stand over it: a glyph's cell is often taller than its box.
void drawGlyphInPixels(Canvas& canvas, int code, const Box& box, int size, Color color) {
    size = std::max(size, 1);
    const Box room{box.x - size, box.y + (box.height - size) / 2, box.width + 2 * size, size};
    canvas.drawText(
        room, glyphText(code),
        {{"Arial Unicode MS", size, normalWeight}, color, TextAlign::Center, true, false});
}

} // namespace

std::string glyphText(int code) {
    for (const auto& [known, character] : glyphCodes)
        if (known == code)
            return character;
    return "?";
}

Box drawGlyph(Canvas& canvas, const DisplayState& st, int code, Box at, int size, Color color) {
    const Box box = gridBox(st, at.x, at.y, at.width, at.height);
    drawGlyphInPixels(canvas, code, box, static_cast<int>(size * minScale(st)), color);
    return box;
}

Box drawCircleGlyph(Canvas& canvas, int code, int cx, int cy, int diameter, Color colorA,
                    Color colorB, int penWidth) {
    canvas.ellipse({cx - diameter / 2, cy - diameter / 2, diameter, diameter},
                   Paint{colorA, colorB, penWidth});
    const int inner = diameter * 3 / 4;
    const Box disc{cx - inner / 2, cy - inner / 2, inner, inner};
    canvas.ellipse(disc, Paint{colorB, std::nullopt, 0});
    const int square = inner * 9 / 10;
    drawGlyphInPixels(canvas, code, {cx - square / 2 + 1, cy - square / 2 - 1, square, square},
                      square * 4 / 5, colorA);
    return disc;
}

Box drawHeart(Canvas& canvas, const DisplayState& st, int x, int y, int count, Color color) {
    const int size = std::max(static_cast<int>(20 * minScale(st)), 1);
    const Font heartFont{"Segoe UI Symbol", size, normalWeight};
    const std::string heart = count < 1 ? hollowHeart : fullHeart;
    // Drawn with room to spare: a symbol's ink may stand a little past its advance.
    Box box{x, y, canvas.textWidth(heart, heartFont), size};
    canvas.drawText({x, y, box.width + size / 2, size}, heart,
                    {heartFont, color, TextAlign::Left, false, false});
    if (count == 0)
        return box;
    const Font numberFont{"Segoe UI Symbol", std::max(static_cast<int>(size * 0.65), 1),
                          normalWeight};
    const std::string number = std::to_string(count);
    const Box numberBox{static_cast<int>(x + size - 5 * st.scaleX),
                        static_cast<int>(y + 5 * st.scaleY), canvas.textWidth(number, numberFont),
                        numberFont.size};
    canvas.drawText({numberBox.x, numberBox.y, numberBox.width + size / 2, numberBox.height},
                    number, {numberFont, color, TextAlign::Left, false, false});
    const int right = std::max(box.x + box.width, numberBox.x + numberBox.width);
    const int bottom = std::max(box.y + box.height, numberBox.y + numberBox.height);
    return {box.x, box.y, right - box.x, bottom - box.y};
}
