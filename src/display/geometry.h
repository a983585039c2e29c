#pragma once
#include <algorithm>
#include <cstdint>

// Pixels of the client area: what the paint pass draws and what a press is tested against.
struct Color {
    std::uint8_t r = 0;
    std::uint8_t g = 0;
    std::uint8_t b = 0;
    friend bool operator==(const Color&, const Color&) = default;
};

struct Box {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    friend bool operator==(const Box&, const Box&) = default;
};

// A point on the right or bottom edge lies outside, as with the window system's own rectangles.
inline bool contains(const Box& box, int x, int y) {
    return x >= box.x && x < box.x + box.width && y >= box.y && y < box.y + box.height;
}

// Colour settings come from a file a user may edit: a value out of range paints at its bound and
// stays as stored.
inline Color colorOf(int r, int g, int b) {
    auto clamp = [](int v) { return static_cast<std::uint8_t>(std::clamp(v, 0, 255)); };
    return {clamp(r), clamp(g), clamp(b)};
}
