#include "platform/appIcon.h"

#include <QPainter>
#include <QPixmap>

namespace {

// The design on a grid of 32 units.
constexpr QRectF body(1, 6, 30, 22);
constexpr qreal bodyRadius = 4;
constexpr QRectF display(5, 10, 14, 8);
constexpr QPointF knob(24, 20);
constexpr qreal knobRadius = 4;
const QColor bodyColor(35, 35, 35);
const QColor displayColor(120, 200, 120);
const QColor knobColor(220, 220, 220);

} // namespace

void paintAppIcon(QPainter& painter, int size) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 32.0, size / 32.0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(bodyColor);
    painter.drawRoundedRect(body, bodyRadius, bodyRadius);
    painter.setBrush(displayColor);
    painter.drawRect(display);
    painter.setBrush(knobColor);
    painter.drawEllipse(knob, knobRadius, knobRadius);
    painter.restore();
}

QIcon makeAppIcon() {
    QIcon icon;
    for (int size : appIconSizes) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paintAppIcon(painter, size);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

QString appIconSvg() {
    auto rgb = [](const QColor& color) { return color.name(QColor::HexRgb); };
    return QString("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"32\" height=\"32\" "
                   "viewBox=\"0 0 32 32\">\n"
                   "  <rect x=\"%1\" y=\"%2\" width=\"%3\" height=\"%4\" rx=\"%5\" fill=\"%6\"/>\n"
                   "  <rect x=\"%7\" y=\"%8\" width=\"%9\" height=\"%10\" fill=\"%11\"/>\n"
                   "  <circle cx=\"%12\" cy=\"%13\" r=\"%14\" fill=\"%15\"/>\n"
                   "</svg>\n")
        .arg(body.x())
        .arg(body.y())
        .arg(body.width())
        .arg(body.height())
        .arg(bodyRadius)
        .arg(rgb(bodyColor))
        .arg(display.x())
        .arg(display.y())
        .arg(display.width())
        .arg(display.height())
        .arg(rgb(displayColor))
        .arg(knob.x())
        .arg(knob.y())
        .arg(knobRadius)
        .arg(rgb(knobColor));
}
