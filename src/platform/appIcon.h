#pragma once
#include <QIcon>
#include <QString>

class QPainter;

// The program's icon, drawn rather than loaded so that there is no resource to go missing: a
// dark radio with a green display and a light knob. One drawing serves the window and the icon
// files of the installed program.

// Paints the icon into a square of size pixels: every shape drawn at that size.
void paintAppIcon(QPainter& painter, int size);
// The window's icon, drawn at each size the desktop asks for most.
QIcon makeAppIcon();
// The same shapes as an SVG document, for the desktop's scalable icons.
QString appIconSvg();
// The sizes of the installed icon files.
inline constexpr int appIconSizes[] = {16, 22, 24, 32, 48, 64, 128, 256};
