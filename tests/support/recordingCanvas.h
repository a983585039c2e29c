#pragma once
#include "display/canvas.h"

#include <string>
#include <vector>

// A canvas that draws nothing and keeps every call, so tests of the screen need no fonts and no
// display. Text measures at a fixed advance of half the font size per character.
class RecordingCanvas : public Canvas {
  public:
    enum class Kind { Fill, Outline, Text, Tile, RoundedRect, Ellipse, Clip, ClearClip };
    struct Call {
        Kind kind;
        Box box;
        std::string text;
        Color color; // fill, outline or text colour
        std::optional<Color> pen;
        int penWidth = 0;
        TextStyle style;  // text only
        int bitmapId = 0; // tile only
        int alpha = 0;    // tile only
        TileEdge edge = TileEdge::Clip;
        int diameter = 0; // rounded shapes and clips
    };

    RecordingCanvas(int width = 500, int height = 155) : width_(width), height_(height) {}
    int width() const override { return width_; }
    int height() const override { return height_; }

    void fillRect(const Box& box, Color color) override {
        calls.push_back({Kind::Fill, box, {}, color, {}, 0, {}, 0, 0, {}, 0});
    }
    void outlineRect(const Box& box, Color color, int penWidth) override {
        calls.push_back({Kind::Outline, box, {}, color, color, penWidth, {}, 0, 0, {}, 0});
    }
    void drawText(const Box& box, const std::string& text, const TextStyle& style) override {
        calls.push_back({Kind::Text, box, text, style.color, {}, 0, style, 0, 0, {}, 0});
    }
    int textWidth(const std::string& text, const Font& font) override {
        int characters = 0;
        for (unsigned char c : text)
            characters += (c & 0xC0) != 0x80;
        return characters * font.size / 2;
    }
    void tileBitmap(int bitmapId, const Box& area, int alpha, TileEdge edge) override {
        calls.push_back({Kind::Tile, area, {}, {}, {}, 0, {}, bitmapId, alpha, edge, 0});
    }
    void roundedRect(const Box& box, int diameter, const Paint& paint) override {
        calls.push_back({Kind::RoundedRect,
                         box,
                         {},
                         paint.fill.value_or(Color{}),
                         paint.pen,
                         paint.penWidth,
                         {},
                         0,
                         0,
                         {},
                         diameter});
    }
    void ellipse(const Box& box, const Paint& paint) override {
        calls.push_back({Kind::Ellipse,
                         box,
                         {},
                         paint.fill.value_or(Color{}),
                         paint.pen,
                         paint.penWidth,
                         {},
                         0,
                         0,
                         {},
                         0});
    }
    void clipRounded(const Box& box, int diameter) override {
        calls.push_back({Kind::Clip, box, {}, {}, {}, 0, {}, 0, 0, {}, diameter});
    }
    void clearClip() override {
        calls.push_back({Kind::ClearClip, {}, {}, {}, {}, 0, {}, 0, 0, {}, 0});
    }

    // The text calls, in order, and the first whose text is exactly this (null: none).
    std::vector<const Call*> texts() const {
        std::vector<const Call*> out;
        for (const Call& call : calls)
            if (call.kind == Kind::Text)
                out.push_back(&call);
        return out;
    }
    const Call* findText(const std::string& text) const {
        for (const Call& call : calls)
            if (call.kind == Kind::Text && call.text == text)
                return &call;
        return nullptr;
    }

    std::vector<Call> calls;

  private:
    int width_;
    int height_;
};
