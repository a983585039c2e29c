#include "platform/qtCanvas.h"

#include "platform/qtBitmaps.h"
#include "platform/qtFonts.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

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

} // namespace

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
    painter_.save();
    painter_.setClipRect(toQRect(box), Qt::IntersectClip);
    painter_.setFont(font.font);
    painter_.setPen(toQColor(style.color));
    painter_.drawText(toQRect(box), flags, decodeText(text));
    painter_.restore();
}

int QtCanvas::textWidth(const std::string& text, const Font& font) {
    if (text.empty())
        return 0;
    return fonts_.make(font).metrics.horizontalAdvance(decodeText(text));
}

// Squeezed, the whole tiles are laid as a texture, and the last column, the last row and their
// corner each take a copy of the bitmap scaled into the room left, laid the same way.
void QtCanvas::tileBitmap(int bitmapId, const Box& area, int alpha, TileEdge edge) {
    const QImage* image = bitmaps_ ? bitmaps_->find(bitmapId) : nullptr;
    if (!image || image->isNull() || alpha <= 0 || isEmpty(area))
        return;
    painter_.save();
    painter_.setOpacity(std::min(alpha, 255) / 255.0);
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
    if (!isEmpty(box))
        paintPath(painter_, roundedPath(box, diameter), paint);
}

void QtCanvas::ellipse(const Box& box, const Paint& paint) {
    if (isEmpty(box))
        return;
    QPainterPath path;
    path.addEllipse(QRectF(toQRect(box)));
    paintPath(painter_, path, paint);
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
