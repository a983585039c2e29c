#include "platform/qtCanvas.h"

#include <QFont>
#include <QPainter>

namespace {
QColor toQColor(Color c) {
    return QColor(c.r, c.g, c.b);
}
QRect toQRect(const Box& b) {
    return QRect(b.x, b.y, b.width, b.height);
}
} // namespace

void QtCanvas::fillRect(const Box& box, Color color) {
    painter_.fillRect(toQRect(box), toQColor(color));
}

void QtCanvas::drawText(const Box& box, const std::string& text, Color color, int pixelHeight,
                        TextAlign align) {
    QFont font("Arial");
    font.setPixelSize(pixelHeight > 0 ? pixelHeight : 1);
    painter_.save();
    painter_.setFont(font);
    painter_.setPen(toQColor(color));
    painter_.setClipRect(toQRect(box));
    int flags = Qt::AlignVCenter | Qt::TextSingleLine |
                (align == TextAlign::Center ? Qt::AlignHCenter : Qt::AlignLeft);
    painter_.drawText(toQRect(box), flags, QString::fromStdString(text));
    painter_.restore();
}
