#pragma once
#include "display/bitmaps.h"

#include <QImage>
#include <map>

// Bitmap files read as BMP whatever their name says, alpha dropped, held for the canvas to draw.
class QtBitmapStore : public BitmapStore {
  public:
    std::optional<BitmapInfo> load(const std::string& path) override;
    void release(int id) override;
    // Null for an id never handed out or released.
    const QImage* find(int id) const;

  private:
    std::map<int, QImage> images_;
    int lastId_ = 0;
};
