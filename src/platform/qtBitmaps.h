#pragma once
#include "display/bitmaps.h"

#include <QImage>
#include <map>
#include <tuple>

// Bitmap files read as BMP whatever their name says, alpha dropped, held for the canvas to draw.
class QtBitmapStore : public BitmapStore {
  public:
    std::optional<BitmapInfo> load(const std::string& path) override;
    void release(int id) override;
    // Null for an id never handed out or released.
    const QImage* find(int id) const;
    // The whole bitmap scaled smoothly to width by height, made once and kept while the bitmap
    // lives: the panels squeeze their last tiles at every pass, four times a second.
    const QImage& squeezed(int id, int width, int height) const;

  private:
    std::map<int, QImage> images_;
    mutable std::map<std::tuple<int, int, int>, QImage> squeezed_;
    int lastId_ = 0;
};
