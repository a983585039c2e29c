#include "display/panels.h"

#include "display/canvas.h"
#include "display/displayState.h"
#include "display/layout.h"

#include <algorithm>

namespace {

// The largest "Arial" size from start down to 1 pixel at which text fits the width.
Font fittedFont(Canvas& canvas, const std::string& text, int start, int weight, int width) {
    Font font{"Arial", std::max(start, 1), weight};
    while (font.size > 1 && canvas.textWidth(text, font) > width)
        --font.size;
    return font;
}

void tileLcdTexture(Canvas& canvas, const DisplayState& st, const Box& area, int alpha) {
    const int bitmap = st.textureSlots[lcdSlot].id;
    if (alpha != 0 && bitmap != 0)
        canvas.tileBitmap(bitmap, area, alpha, TileEdge::Squeeze);
}

} // namespace

Box drawRoundedPanel(Canvas& canvas, const DisplayState& st, Box at, int radius, Color pen,
                     int penWidth, Color fill, int textureAlpha) {
    const int diameter = 2 * std::min(radius, at.height / 2);
    canvas.roundedRect(at, diameter, Paint{fill, pen, penWidth});
    if (textureAlpha != 0 && st.textureSlots[lcdSlot].id != 0) {
        canvas.clipRounded(at, diameter);
        tileLcdTexture(canvas, st, at, textureAlpha);
        canvas.clearClip();
    }
    return at;
}

Box drawFittedPanel(Canvas& canvas, const DisplayState& st, const std::string& text, Box at,
                    int size, bool bold, Color pen, Color textColor, Color fill) {
    const Box box = gridBox(st, at.x, at.y, at.width, at.height);
    drawRoundedPanel(canvas, st, box, static_cast<int>(15 * st.scaleX), pen,
                     static_cast<int>(st.scaleY), fill, st.textureAlpha);
    const Font font = fittedFont(canvas, text, static_cast<int>(size * minScale(st)),
                                 bold ? boldWeight : normalWeight, box.width);
    canvas.drawText(box, text, {font, textColor, TextAlign::Center, true, false});
    return box;
}

Box drawTextBox(Canvas& canvas, const DisplayState& st, const std::string& text, Box at,
                const TextBoxStyle& style) {
    Box box = at;
    int size = style.size;
    if (style.scaled) {
        box = gridBox(st, at.x, at.y, at.width, at.height);
        size = static_cast<int>(style.size * minScale(st));
    }
    if (style.border > 0)
        canvas.outlineRect(box, style.pen, std::max(1, style.border));
    const Font font{"Arial", std::max(size, 1), style.bold ? boldWeight : normalWeight};
    canvas.drawText(box, text,
                    {font, style.text, style.centered ? TextAlign::Center : TextAlign::Left,
                     style.middle, style.wrapped});
    return box;
}

Box drawCell(Canvas& canvas, const DisplayState& st, const std::string& text, Box at, int alpha,
             Color pen, Color textColor, Color fill) {
    const Box box = gridBox(st, at.x, at.y, at.width, at.height);
    canvas.fillRect(box, fill);
    tileLcdTexture(canvas, st, box, alpha);
    const Font font =
        fittedFont(canvas, text, static_cast<int>(12 * minScale(st)), boldWeight, box.width);
    canvas.drawText(box, text, {font, textColor, TextAlign::Center, true, false});
    canvas.outlineRect(box, pen, std::max(1, static_cast<int>(st.scaleY)));
    return box;
}
