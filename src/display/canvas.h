#pragma once
#include <cstdint>
#include <string>

// What the paint pass draws on: the Qt host's back buffer in the program, a recorder in tests.
struct Color {
    std::uint8_t r = 0;
    std::uint8_t g = 0;
    std::uint8_t b = 0;
};

struct Box {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

enum class TextAlign { Left, Center };

class Canvas {
  public:
    virtual ~Canvas() = default;
    virtual int width() const = 0;
    virtual int height() const = 0;
    virtual void fillRect(const Box& box, Color color) = 0;
    // One line of UTF-8 text in "Arial", vertically centred in box, cut at its edges.
    virtual void drawText(const Box& box, const std::string& text, Color color, int pixelHeight,
                          TextAlign align) = 0;
};
