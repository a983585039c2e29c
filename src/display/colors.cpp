#include "display/colors.h"

const std::array<ColorEntry, 29> namedColors{{
    {"Black", 0, 0, 0},
    {"White", 255, 255, 255},
    {"ClassicBlueLCD", 0, 0, 128},
    {"DarkGreenLCD", 0, 128, 0},
    {"BlueLCD", 0, 0, 255},
    {"GreenLCD", 0, 255, 0},
    {"RedLCD", 255, 0, 0},
    {"CyanLCD", 0, 255, 255},
    {"MagentaLCD", 255, 0, 255},
    {"PurpleLCD", 128, 0, 128},
    {"AmberLCD", 255, 191, 0},
    {"Leather", 139, 69, 19},
    {"Wood", 139, 90, 43},
    {"Metal", 128, 128, 128},
    {"CarbonFiber", 35, 35, 35},
    {"Brushed Steel", 192, 192, 192},
    {"Walnut", 92, 51, 23},
    {"Mahogany", 103, 1, 1},
    {"Midnight Blue", 0, 51, 102},
    {"Racing Red", 200, 0, 0},
    {"Electric Lime", 204, 255, 0},
    {"Tungsten", 50, 50, 50},
    {"Ice Blue", 153, 255, 255},
    {"Yellow", 255, 255, 0},
    {"Orange", 255, 165, 0},
    {"Brown", 165, 42, 42},
    {"Gold", 255, 215, 0},
    {"Pink", 255, 192, 203},
    {"Indigo", 75, 0, 130},
}};

const std::array<ColorScheme, 18> colorSchemes{};

void applyScheme(DisplayState&, int) {}

void applyRandomColorScheme(DisplayState&) {}

std::optional<int> findSchemeIndex(const DisplayState&) {
    return std::nullopt;
}

std::optional<int> findNamedColor(int, int, int) {
    return std::nullopt;
}
