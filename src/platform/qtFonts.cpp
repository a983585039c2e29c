#include "platform/qtFonts.h"

#include <QStringList>
#include <algorithm>

namespace {

// Each resize makes a new set of sizes; the old ones are dropped rather than kept for ever.
constexpr std::size_t fontCacheLimit = 128;

int cellHeight(QFont font, int pixelSize) {
    font.setPixelSize(pixelSize);
    QFontMetrics metrics(font);
    return metrics.ascent() + metrics.descent();
}

// The screen's font sizes are cell heights, as the window system it was laid out for measures
// them, while Qt sizes a font by its em. A font's cell is a little more than its em, so the first
// guess scales by the ratio measured at the asked size, and a short walk settles the rounding.
int pixelSizeForCell(const QFont& font, int cell) {
    const int measured = std::max(cellHeight(font, cell), 1);
    int pixels = std::max(1, (cell * cell + measured / 2) / measured);
    while (pixels > 1 && cellHeight(font, pixels) > cell)
        --pixels;
    // Bounded, for a font whose cell would not grow with its size.
    while (pixels < 4 * cell && cellHeight(font, pixels + 1) <= cell)
        ++pixels;
    // The largest size not above the cell, or the next one up when that comes closer.
    if (cellHeight(font, pixels + 1) - cell < cell - cellHeight(font, pixels))
        ++pixels;
    return pixels;
}

// The length of the valid UTF-8 sequence at text[at] and its code point, or 0 when there is none:
// overlong forms, surrogates and code points beyond U+10FFFF are no sequence.
std::size_t readUtf8(const std::string& text, std::size_t at, char32_t& codePoint) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = byte(at);
    std::size_t length = 0;
    unsigned low = 0x80, high = 0xBF; // the range of the second byte
    if (lead < 0x80) {
        codePoint = lead;
        return 1;
    } else if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        codePoint = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        codePoint = lead & 0x0F;
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        codePoint = lead & 0x07;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        return 0;
    }
    if (at + length > text.size())
        return 0;
    for (std::size_t i = 1; i < length; ++i) {
        const unsigned next = byte(at + i);
        if (next < (i == 1 ? low : 0x80) || next > (i == 1 ? high : 0xBF))
            return 0;
        codePoint = (codePoint << 6) | (next & 0x3F);
    }
    return length;
}

} // namespace

void installFontSubstitutions() {
    QFont::insertSubstitution("Arial", "Liberation Sans");
    QFont::insertSubstitutions("Arial Unicode MS", {"Symbola", "DejaVu Sans"});
    QFont::insertSubstitutions("Segoe UI Symbol", {"Symbola", "DejaVu Sans"});
}

QString decodeText(const std::string& text) {
    QString out;
    out.reserve(static_cast<qsizetype>(text.size()));
    for (std::size_t at = 0; at < text.size();) {
        char32_t codePoint = 0;
        const std::size_t length = readUtf8(text, at, codePoint);
        if (length == 0) {
            out.append(QChar(static_cast<unsigned char>(text[at])));
            ++at;
            continue;
        }
        if (QChar::requiresSurrogates(codePoint)) {
            out.append(QChar(QChar::highSurrogate(codePoint)));
            out.append(QChar(QChar::lowSurrogate(codePoint)));
        } else {
            out.append(QChar(static_cast<char16_t>(codePoint)));
        }
        at += length;
    }
    return out;
}

const MadeFont& FontCache::make(const Font& font) {
    const int cell = std::max(font.size, 1);
    const int weight = std::clamp(font.weight, 1, 1000);
    auto key = std::make_tuple(font.family, cell, weight);
    if (auto it = fonts_.find(key); it != fonts_.end())
        return it->second;
    if (fonts_.size() >= fontCacheLimit)
        fonts_.clear();
    QFont qfont(QString::fromStdString(font.family));
    qfont.setWeight(static_cast<QFont::Weight>(weight));
    qfont.setPixelSize(pixelSizeForCell(qfont, cell));
    QFontMetrics metrics(qfont);
    return fonts_.emplace(std::move(key), MadeFont{qfont, metrics}).first->second;
}
