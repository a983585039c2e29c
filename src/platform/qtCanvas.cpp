#include "platform/qtCanvas.h"

#include "platform/qtBitmaps.h"
#include "platform/qtFonts.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace {

QColor toQColor(Color c) {
    return QColor(c.r, c.g, c.b);
}

QRect toQRect(const Box& b) {
    return QRect(b.x, b.y, b.width, b.height);
}

bool isEmpty(const Box& b) {
    return b.width <= 0 || b.height <= 0;
}

// Four quarter ellipses joined clockwise from the top left, as the screen's rounded shapes were
// first drawn. Qt counts angles counter-clockwise, hence the negated angles and sweeps. A diameter
// beyond the shorter side would fold the arcs over each other, so it stops there.
QPainterPath roundedPath(const Box& box, int diameter) {
    QPainterPath path;
    const qreal d = std::min({diameter, box.width, box.height});
    if (d <= 0) {
        path.addRect(toQRect(box));
        return path;
    }
    const qreal x = box.x, y = box.y, right = box.x + box.width, bottom = box.y + box.height;
    path.arcMoveTo(QRectF(x, y, d, d), 180); // else the path would start at the origin
    path.arcTo(QRectF(x, y, d, d), 180, -90);
    path.arcTo(QRectF(right - d, y, d, d), 90, -90);
    path.arcTo(QRectF(right - d, bottom - d, d, d), 0, -90);
    path.arcTo(QRectF(x, bottom - d, d, d), -90, -90);
    path.closeSubpath();
    return path;
}

// Filled, then outlined by a pen centred on the outline; a pen of width 0 is one pixel wide.
void paintPath(QPainter& painter, const QPainterPath& path, const Paint& paint) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (paint.fill)
        painter.fillPath(path, toQColor(*paint.fill));
    if (paint.pen) {
        QPen pen(toQColor(*paint.pen), std::max(paint.penWidth, 0));
        pen.setJoinStyle(Qt::MiterJoin);
        pen.setCapStyle(Qt::FlatCap);
        painter.strokePath(path, pen);
    }
    painter.restore();
}

// The image repeated over area from its top left corner, cut at the area's edges.
void fillTiled(QPainter& painter, const QRect& area, const QImage& image) {
    if (area.isEmpty())
        return;
    painter.setBrushOrigin(area.topLeft());
    painter.fillRect(area, QBrush(image));
}

// The smallest rectangle that holds every pixel of the image that is not fully transparent.
QRect inkOf(const QImage& image) {
    const auto rowHasInk = [&](int y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        return std::any_of(row, row + image.width(), [](QRgb pixel) { return qAlpha(pixel) != 0; });
    };
    int top = 0, bottom = image.height() - 1;
    while (top <= bottom && !rowHasInk(top))
        ++top;
    while (bottom > top && !rowHasInk(bottom))
        --bottom;
    if (top > bottom)
        return {};
    int left = image.width(), right = -1;
    for (int y = top; y <= bottom; ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < left; ++x)
            if (qAlpha(row[x]) != 0) {
                left = x;
                break;
            }
        for (int x = image.width() - 1; x > right; --x)
            if (qAlpha(row[x]) != 0) {
                right = x;
                break;
            }
    }
    return QRect(QPoint(left, top), QPoint(right, bottom));
}

// A blit lands on the pixels a drawing would only under a move by whole pixels.
bool plainMove(const QPainter& painter) {
    const QTransform t = painter.deviceTransform();
    return t.type() <= QTransform::TxTranslate && t.dx() == std::floor(t.dx()) &&
           t.dy() == std::floor(t.dy());
}

// Enough for a few screens' worth of panels and texts at the largest window; a clock or a
// station title that keeps changing fills it slowly and starts it over.
constexpr std::size_t cacheEntryLimit = 512;
constexpr std::size_t cacheByteLimit = 32u << 20;

std::string keyOf(const Paint& paint) {
    const auto color = [](const std::optional<Color>& c) {
        return c ? std::to_string(c->r) + "," + std::to_string(c->g) + "," + std::to_string(c->b)
                 : std::string("-");
    };
    return color(paint.fill) + "|" + color(paint.pen) + "|" + std::to_string(paint.penWidth);
}

// A shape drawn by shape(box) on a transparent image with room for the pen beyond the box.
template <typename Shape>
PaintCache::Drawn drawnShape(const Box& box, const Paint& paint, Shape shape) {
    const int margin = paint.pen ? std::max(paint.penWidth, 1) / 2 + 2 : 1;
    PaintCache::Drawn drawn{QImage(box.width + 2 * margin, box.height + 2 * margin,
                                   QImage::Format_ARGB32_Premultiplied),
                            QPoint(-margin, -margin)};
    drawn.image.fill(Qt::transparent);
    QPainter painter(&drawn.image);
    paintPath(painter, shape(Box{margin, margin, box.width, box.height}), paint);
    return drawn;
}

QPainterPath ellipsePath(const Box& box) {
    QPainterPath path;
    path.addEllipse(QRectF(toQRect(box)));
    return path;
}

} // namespace

const PaintCache::Drawn* PaintCache::find(const std::string& key) const {
    const auto it = drawn_.find(key);
    return it == drawn_.end() ? nullptr : &it->second;
}

const PaintCache::Drawn& PaintCache::keep(const std::string& key, Drawn drawn) {
    const auto bytes = static_cast<std::size_t>(drawn.image.sizeInBytes());
    if (drawn_.size() >= cacheEntryLimit || bytes_ + bytes > cacheByteLimit) {
        drawn_.clear();
        bytes_ = 0;
    }
    bytes_ += bytes;
    return drawn_.insert_or_assign(key, std::move(drawn)).first->second;
}

template <typename Make>
bool QtCanvas::layCached(const Box& box, const std::string& key, Make make) {
    if (!cache_ || !plainMove(painter_))
        return false;
    const PaintCache::Drawn* drawn = cache_->find(key);
    if (!drawn)
        drawn = &cache_->keep(key, make());
    painter_.drawImage(QPoint(box.x, box.y) + drawn->offset, drawn->image);
    return true;
}

void QtCanvas::fillRect(const Box& box, Color color) {
    if (!isEmpty(box))
        painter_.fillRect(toQRect(box), toQColor(color));
}

// Four bands inside the box, as a pen drawn inside the frame would leave them.
void QtCanvas::outlineRect(const Box& box, Color color, int penWidth) {
    if (isEmpty(box))
        return;
    const int w = std::max(penWidth, 1);
    if (2 * w >= box.width || 2 * w >= box.height) {
        fillRect(box, color);
        return;
    }
    const QColor c = toQColor(color);
    painter_.fillRect(box.x, box.y, box.width, w, c);
    painter_.fillRect(box.x, box.y + box.height - w, box.width, w, c);
    painter_.fillRect(box.x, box.y + w, w, box.height - 2 * w, c);
    painter_.fillRect(box.x + box.width - w, box.y + w, w, box.height - 2 * w, c);
}

void QtCanvas::drawText(const Box& box, const std::string& text, const TextStyle& style) {
    if (isEmpty(box) || text.empty())
        return;
    const MadeFont& font = fonts_.make(style.font);
    const int flags = (style.middle ? Qt::AlignVCenter : Qt::AlignTop) |
                      (style.wrapped ? Qt::TextWordWrap : Qt::TextSingleLine) |
                      (style.align == TextAlign::Center ? Qt::AlignHCenter : Qt::AlignLeft);
    const QColor color = toQColor(style.color);
    const std::string key = "t|" + fontKey(style.font) + "|" + std::to_string(color.rgb()) + "|" +
                            std::to_string(flags) + "|" + std::to_string(box.width) + "x" +
                            std::to_string(box.height) + "|" + text;
    // Laid out once, on an image of the whole box, and cut to its ink: measuring the text first
    // would lay it out twice, and a clock's text is made anew every second.
    const auto make = [&] {
        QImage whole(box.width, box.height, QImage::Format_ARGB32_Premultiplied);
        whole.fill(Qt::transparent);
        {
            QPainter painter(&whole);
            painter.setFont(font.font);
            painter.setPen(color);
            painter.drawText(whole.rect(), flags, decodeText(text));
        }
        const QRect ink = inkOf(whole);
        return PaintCache::Drawn{ink.isEmpty() ? QImage() : whole.copy(ink), ink.topLeft()};
    };
    if (!layCached(box, key, make)) {
        painter_.save();
        painter_.setClipRect(toQRect(box), Qt::IntersectClip);
        painter_.setFont(font.font);
        painter_.setPen(color);
        painter_.drawText(toQRect(box), flags, decodeText(text));
        painter_.restore();
    }
}

int QtCanvas::textWidth(const std::string& text, const Font& font) {
    if (text.empty())
        return 0;
    return fonts_.width(font, text);
}

// Squeezed, the whole tiles are laid as a texture, and the last column, the last row and their
// corner each take a copy of the bitmap scaled into the room left, laid the same way.
void QtCanvas::tileBitmap(int bitmapId, const Box& area, int alpha, TileEdge edge) {
    const QImage* image = bitmaps_ ? bitmaps_->find(bitmapId) : nullptr;
    if (!image || image->isNull() || alpha <= 0 || isEmpty(area))
        return;
    const qreal opacity = std::min(alpha, 255) / 255.0;
    // A see-through tiling is the slowest fill there is, and a background is tiled at every pass.
    const auto tiled = [&] {
        PaintCache::Drawn drawn{
            QImage(area.width, area.height, QImage::Format_ARGB32_Premultiplied), QPoint()};
        drawn.image.fill(Qt::transparent);
        QPainter painter(&drawn.image);
        painter.setOpacity(opacity);
        fillTiled(painter, drawn.image.rect(), *image);
        return drawn;
    };
    if (edge == TileEdge::Clip &&
        layCached(area,
                  "b|" + std::to_string(image->cacheKey()) + "|" + std::to_string(area.width) +
                      "x" + std::to_string(area.height) + "|" + std::to_string(alpha),
                  tiled))
        return;
    painter_.save();
    painter_.setOpacity(opacity);
    if (edge == TileEdge::Clip) {
        fillTiled(painter_, toQRect(area), *image);
    } else {
        const int w = image->width(), h = image->height();
        const int wholeWidth = area.width / w * w, wholeHeight = area.height / h * h;
        const int restWidth = area.width - wholeWidth, restHeight = area.height - wholeHeight;
        const int restX = area.x + wholeWidth, restY = area.y + wholeHeight;
        auto squeezed = [&](int width, int height) -> const QImage& {
            return bitmaps_->squeezed(bitmapId, width, height);
        };
        fillTiled(painter_, QRect(area.x, area.y, wholeWidth, wholeHeight), *image);
        if (restWidth > 0)
            fillTiled(painter_, QRect(restX, area.y, restWidth, wholeHeight),
                      squeezed(restWidth, h));
        if (restHeight > 0)
            fillTiled(painter_, QRect(area.x, restY, wholeWidth, restHeight),
                      squeezed(w, restHeight));
        if (restWidth > 0 && restHeight > 0)
            painter_.drawImage(QPoint(restX, restY), squeezed(restWidth, restHeight));
    }
    painter_.restore();
}

void QtCanvas::roundedRect(const Box& box, int diameter, const Paint& paint) {
    if (isEmpty(box))
        return;
    const auto shape = [diameter](const Box& at) { return roundedPath(at, diameter); };
    const std::string key = "r|" + std::to_string(box.width) + "x" + std::to_string(box.height) +
                            "|" + std::to_string(diameter) + "|" + keyOf(paint);
    if (!layCached(box, key, [&] { return drawnShape(box, paint, shape); }))
        paintPath(painter_, shape(box), paint);
}

void QtCanvas::ellipse(const Box& box, const Paint& paint) {
    if (isEmpty(box))
        return;
    const std::string key =
        "e|" + std::to_string(box.width) + "x" + std::to_string(box.height) + "|" + keyOf(paint);
    if (!layCached(box, key, [&] { return drawnShape(box, paint, ellipsePath); }))
        paintPath(painter_, ellipsePath(box), paint);
}

void QtCanvas::clipRounded(const Box& box, int diameter) {
    if (isEmpty(box))
        painter_.setClipRect(QRect());
    else
        painter_.setClipPath(roundedPath(box, diameter));
}

void QtCanvas::clearClip() {
    painter_.setClipping(false);
}
