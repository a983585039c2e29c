#pragma once
#include "display/canvas.h"

class FontCache;
class QPainter;
class QtBitmapStore;

// The paint pass's canvas over a QPainter on the back buffer, in logical pixels. The fonts and
// the bitmaps belong to the host and outlive the canvas; without a store no bitmap draws.
class QtCanvas : public Canvas {
  public:
    QtCanvas(QPainter& painter, int width, int height, FontCache& fonts,
             const QtBitmapStore* bitmaps)
        : painter_(painter), width_(width), height_(height), fonts_(fonts), bitmaps_(bitmaps) {}
    int width() const override { return width_; }
    int height() const override { return height_; }
    void fillRect(const Box& box, Color color) override;
    void outlineRect(const Box& box, Color color, int penWidth) override;
    void drawText(const Box& box, const std::string& text, const TextStyle& style) override;
    int textWidth(const std::string& text, const Font& font) override;
    void tileBitmap(int bitmapId, const Box& area, int alpha, TileEdge edge) override;
    void roundedRect(const Box& box, int diameter, const Paint& paint) override;
    void ellipse(const Box& box, const Paint& paint) override;
    void clipRounded(const Box& box, int diameter) override;
    void clearClip() override;

  private:
    QPainter& painter_;
    int width_;
    int height_;
    FontCache& fonts_;
    const QtBitmapStore* bitmaps_;
};
