#pragma once
#include "display/canvas.h"

#include <QFont>
#include <QFontMetrics>
#include <QString>
#include <map>
#include <string>
#include <tuple>
#include <unordered_map>

// Points the families the screen asks for at fonts Debian ships: "Arial" at Liberation Sans, the
// two symbol families at Symbola before DejaVu Sans, so that no colour emoji font (which ignores
// the pen) draws a glyph. Call once, right after the QApplication is made.
void installFontSubstitutions();

// The logic's text as Qt draws it: UTF-8, each byte that starts no valid sequence read as Latin-1.
QString decodeText(const std::string& text);
// The font's family, size and weight as one string, for the keys of what is kept per font.
std::string fontKey(const Font& font);

struct MadeFont {
    QFont font;
    QFontMetrics metrics;
};

// The canvas's fonts, made once per family, size and weight and kept by the host between paint
// passes. Used on the user-interface thread only.
class FontCache {
  public:
    // A font whose ascent plus descent is font.size pixels (at least 1), give or take one.
    const MadeFont& make(const Font& font);
    // The advance width of text on one line in font, shaped once.
    int width(const Font& font, const std::string& text);

  private:
    std::map<std::tuple<std::string, int, int>, MadeFont> fonts_;
    std::unordered_map<std::string, int> widths_;
};
