#pragma once
#include "display/canvas.h"

class QPainter;

// The paint pass's canvas over a QPainter on the back buffer.
class QtCanvas : public Canvas {
  public:
    QtCanvas(QPainter& painter, int width, int height)
        : painter_(painter), width_(width), height_(height) {}
    int width() const override { return width_; }
    int height() const override { return height_; }
    void fillRect(const Box& box, Color color) override;
    void drawText(const Box& box, const std::string& text, Color color, int pixelHeight,
                  TextAlign align) override;

  private:
    QPainter& painter_;
    int width_;
    int height_;
};
