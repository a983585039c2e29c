#pragma once
#include <array>
#include <string>
#include <vector>

struct ColorEntry {
    std::string name;
    int r = 0;
    int g = 0;
    int b = 0;
    friend bool operator==(const ColorEntry&, const ColorEntry&) = default;
};

// The colours the Visual dialog offers, in its order; colors.json is written from them.
extern const std::array<ColorEntry, 29> namedColors;
