#include "platform/qtBitmaps.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QtEndian>
#include <cstdint>
#include <cstdlib>

namespace {

// Qt's reader stops quietly at the end of a short file and hands out a half-black image, so the
// file must hold every row its header promises. Compressed rows have no size known in advance
// and are left to the reader.
bool holdsAllRows(QFile& file) {
    const QByteArray header = file.peek(54);
    if (header.size() < 26 || !header.startsWith("BM"))
        return true; // the reader refuses it on its own
    auto u16 = [&](int at) { return qFromLittleEndian<std::uint16_t>(header.constData() + at); };
    auto u32 = [&](int at) { return qFromLittleEndian<std::uint32_t>(header.constData() + at); };
    std::int64_t width = 0, height = 0, bits = 0, compression = 0;
    if (u32(14) == 12) { // the old OS/2 header
        width = u16(18);
        height = u16(20);
        bits = u16(24);
    } else if (header.size() >= 34) {
        width = static_cast<std::int32_t>(u32(18));
        height = std::abs(static_cast<std::int64_t>(static_cast<std::int32_t>(u32(22))));
        bits = u16(28);
        compression = u32(30);
    }
    const bool uncompressed = compression == 0 || compression == 3 || compression == 6;
    if (!uncompressed || width <= 0)
        return true;
    const std::int64_t rowBytes = (width * bits + 31) / 32 * 4;
    return file.size() >= static_cast<std::int64_t>(u32(10)) + rowBytes * height;
}

} // namespace

std::optional<BitmapInfo> QtBitmapStore::load(const std::string& path) {
    QFile file(QString::fromStdString(path));
    // A folder named like a bitmap would make the reader wait on nothing useful.
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly) || !holdsAllRows(file))
        return std::nullopt;
    // The format is forced: a PNG that calls itself ".bmp" is no bitmap here. The reader's
    // allocation limit refuses a header that claims a giant size before any memory is taken.
    QImageReader reader(&file, "BMP");
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
    std::erase_if(squeezed_, [id](const auto& entry) { return std::get<0>(entry.first) == id; });
}

const QImage* QtBitmapStore::find(int id) const {
    auto it = images_.find(id);
    return it == images_.end() ? nullptr : &it->second;
}

const QImage& QtBitmapStore::squeezed(int id, int width, int height) const {
    // A window resized by dragging asks for a new size at every step; the old ones go.
    constexpr std::size_t kept = 64;
    if (squeezed_.size() >= kept)
        squeezed_.clear();
    auto [it, added] = squeezed_.try_emplace({id, width, height});
    if (added)
        it->second =
            images_.at(id).scaled(width, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    return it->second;
}
