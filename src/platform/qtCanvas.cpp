#include "platform/qtCanvas.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>

namespace {
QColor toQColor(Color c) {
    return QColor(c.r, c.g, c.b);
}
QRect toQRect(const Box& b) {
    return QRect(b.x, b.y, b.width, b.height);
}
QFont toQFont(const Font& font) {
    QFont q(QString::fromStdString(font.family));
    q.setPixelSize(font.size > 0 ? font.size : 1);
    q.setWeight(static_cast<QFont::Weight>(font.weight));
    return q;
}
} // namespace

void QtCanvas::fillRect(const Box& box, Color color) {
    painter_.fillRect(toQRect(box), toQColor(color));
}

void QtCanvas::outlineRect(const Box&, Color, int) {}

void QtCanvas::drawText(const Box& box, const std::string& text, const TextStyle& style) {
    painter_.save();
    painter_.setFont(toQFont(style.font));
    painter_.setPen(toQColor(style.color));
    painter_.setClipRect(toQRect(box));
    int flags = (style.middle ? Qt::AlignVCenter : Qt::AlignTop) |
                (style.wrapped ? Qt::TextWordWrap : Qt::TextSingleLine) |
                (style.align == TextAlign::Center ? Qt::AlignHCenter : Qt::AlignLeft);
    painter_.drawText(toQRect(box), flags, QString::fromStdString(text));
    painter_.restore();
}

int QtCanvas::textWidth(const std::string& text, const Font& font) {
    return QFontMetrics(toQFont(font)).horizontalAdvance(QString::fromStdString(text));
}

void QtCanvas::tileBitmap(int, const Box&, int, TileEdge) {}

void QtCanvas::roundedRect(const Box&, int, const Paint&) {}

void QtCanvas::ellipse(const Box&, const Paint&) {}

void QtCanvas::clipRounded(const Box&, int) {}

void QtCanvas::clearClip() {}
