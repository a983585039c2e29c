#pragma once
#include <array>
#include <optional>
#include <string>

struct DisplayState;

struct ColorEntry {
    std::string name;
    int r = 0;
    int g = 0;
    int b = 0;
    friend bool operator==(const ColorEntry&, const ColorEntry&) = default;
};

struct ColorScheme {
    std::string name;
    ColorEntry background;
    ColorEntry lcd;
    ColorEntry text;
};

// The colours the Visual dialog offers, in its order; colors.json is written from them.
extern const std::array<ColorEntry, 29> namedColors;
extern const std::array<ColorScheme, 18> colorSchemes;

// Copies a scheme's colours into the nine colour settings.
void applyScheme(DisplayState& st, int index);
// A scheme drawn with the 15-bit rand() and applied, at start-up when randomColorPlayer is on, by
// the lamp and by the Visual dialog; returns its index.
int applyRandomColorScheme(DisplayState& st);
// The first scheme whose colours are all nine settings, if any.
std::optional<int> findSchemeIndex(const DisplayState& st);
// The first named colour of these values, if any.
std::optional<int> findNamedColor(int r, int g, int b);
