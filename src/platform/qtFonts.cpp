#include "platform/qtFonts.h"

#include "util/utf8.h"

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

} // namespace

void installFontSubstitutions() {
    QFont::insertSubstitution("Arial", "Liberation Sans");
    QFont::insertSubstitutions("Arial Unicode MS", {"Symbola", "DejaVu Sans"});
    QFont::insertSubstitutions("Segoe UI Symbol", {"Symbola", "DejaVu Sans"});
}

QString decodeText(const std::string& text) {
    QString out;
    out.reserve(static_cast<qsizetype>(text.size()));
    // Well-formed runs go over whole; each byte between them stands for itself.
    std::size_t run = 0;
    for (std::size_t at = 0; at < text.size();) {
        if (const std::size_t length = utf8SequenceLength(text, at)) {
            at += length;
            continue;
        }
        out += QString::fromUtf8(text.data() + run, static_cast<qsizetype>(at - run));
        out += QChar(static_cast<unsigned char>(text[at]));
        run = ++at;
    }
    out += QString::fromUtf8(text.data() + run, static_cast<qsizetype>(text.size() - run));
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

std::string fontKey(const Font& font) {
    return font.family + "|" + std::to_string(font.size) + "|" + std::to_string(font.weight);
}

int FontCache::width(const Font& font, const std::string& text) {
    // The fitting of a headline measures it at each size down from its largest.
    constexpr std::size_t widthCacheLimit = 4096;
    std::string key = fontKey(font) + "|" + text;
    if (auto it = widths_.find(key); it != widths_.end())
        return it->second;
    if (widths_.size() >= widthCacheLimit)
        widths_.clear();
    const int advance = make(font).metrics.horizontalAdvance(decodeText(text));
    widths_.emplace(std::move(key), advance);
    return advance;
}
