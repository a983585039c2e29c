#pragma once
#include "display/canvas.h"

#include <QImage>
#include <QPoint>
#include <unordered_map>

class FontCache;
class QPainter;
class QtBitmapStore;

// Shapes and texts drawn once into images of their own and laid after that: the pass
// runs four times a second over the same panels and buttons and mostly the same texts, and
// shaping a text or stroking an anti-aliased curve costs far more than laying its pixels. Kept by
// the host between passes; emptied whole when it grows past its budget.
class PaintCache {
  public:
    struct Drawn {
        QImage image;
        QPoint offset; // where the image's top left lies from the box's
    };
    const Drawn* find(const std::string& key) const;
    const Drawn& keep(const std::string& key, Drawn drawn);

  private:
    std::unordered_map<std::string, Drawn> drawn_;
    std::size_t bytes_ = 0;
};

// The paint pass's canvas over a QPainter on the back buffer, in logical pixels. The fonts, the
// bitmaps and the paint cache belong to the host and outlive the canvas; without a store no
// bitmap draws, without a cache everything is drawn afresh.
class QtCanvas : public Canvas {
  public:
    QtCanvas(QPainter& painter, int width, int height, FontCache& fonts,
             const QtBitmapStore* bitmaps, PaintCache* cache = nullptr)
        : painter_(painter), width_(width), height_(height), fonts_(fonts), bitmaps_(bitmaps),
          cache_(cache) {}
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
    PaintCache* cache_;

    // Lays the cached drawing for key at the box, made by make() when missing; false, laying
    // nothing, when there is no cache or the painter's transform would not land its pixels on
    // those of a drawing made in place.
    template <typename Make> bool layCached(const Box& box, const std::string& key, Make make);
};
