#include "platform/qtBitmaps.h"

#include <QFileInfo>
#include <QImageReader>

std::optional<BitmapInfo> QtBitmapStore::load(const std::string& path) {
    const QString file = QString::fromStdString(path);
    // A folder named like a bitmap would make the reader wait on nothing useful.
    if (!QFileInfo(file).isFile())
        return std::nullopt;
    // The format is forced: a PNG that calls itself ".bmp" is no bitmap here. The reader's
    // allocation limit refuses a header that claims a giant size before any memory is taken.
    QImageReader reader(file, "BMP");
    reader.setDecideFormatFromContent(false);
    QImage image = reader.read();
    if (image.isNull())
        return std::nullopt;
    image = image.convertToFormat(QImage::Format_RGB32);
    const int id = ++lastId_;
    images_.emplace(id, std::move(image));
    const QImage& kept = images_.at(id);
    return BitmapInfo{id, kept.width(), kept.height()};
}

void QtBitmapStore::release(int id) {
    images_.erase(id);
}

const QImage* QtBitmapStore::find(int id) const {
    auto it = images_.find(id);
    return it == images_.end() ? nullptr : &it->second;
}
