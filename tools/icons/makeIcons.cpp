// Writes the installed program's icon files under the folder given: hicolor/NxN/apps/NAME.png at
// each size, every one drawn at its size, and hicolor/scalable/apps/NAME.svg, all from the same
// drawing as the window's icon.
#include "platform/appIcon.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: makeIcons FOLDER\n");
        return 2;
    }
    const QString root = QString::fromLocal8Bit(argv[1]) + "/hicolor/";
    const QString name = "/apps/marble-tunnel-radio";
    for (int size : appIconSizes) {
        const QString folder = root + QString("%1x%1").arg(size) + "/apps";
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        paintAppIcon(painter, size);
        painter.end();
        if (!QDir().mkpath(folder) ||
            !image.save(root + QString("%1x%1").arg(size) + name + ".png")) {
            std::fprintf(stderr, "makeIcons: cannot write the %d pixel icon\n", size);
            return 1;
        }
    }
    QDir().mkpath(root + "scalable/apps");
    QFile svg(root + "scalable" + name + ".svg");
    if (!svg.open(QIODevice::WriteOnly) || svg.write(appIconSvg().toUtf8()) < 0) {
        std::fprintf(stderr, "makeIcons: cannot write the scalable icon\n");
        return 1;
    }
    return 0;
}
