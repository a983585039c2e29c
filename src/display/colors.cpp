#include "display/colors.h"

#include "display/displayState.h"

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

const std::array<ColorScheme, 18> colorSchemes{{
    {"Classic", {"CarbonFiber", 35, 35, 35}, {"Black", 0, 0, 0}, {"White", 255, 255, 255}},
    {"Classic Blue", {"Black", 0, 0, 0}, {"ClassicBlueLCD", 0, 0, 128}, {"White", 255, 255, 255}},
    {"Midnight", {"Black", 0, 0, 0}, {"CarbonFiber", 35, 35, 35}, {"Black", 0, 0, 0}},
    {"Full Moon", {"Black", 0, 0, 0}, {"White", 255, 255, 255}, {"Midnight Blue", 0, 51, 102}},
    {"Modern", {"Leather", 139, 69, 19}, {"GreenLCD", 0, 255, 0}, {"Black", 0, 0, 0}},
    {"Retro", {"Brown", 165, 42, 42}, {"RedLCD", 255, 0, 0}, {"Yellow", 255, 255, 0}},
    {"Futuristic", {"Metal", 128, 128, 128}, {"CyanLCD", 0, 255, 255}, {"Black", 0, 0, 0}},
    {"Elegant", {"Wood", 139, 90, 43}, {"MagentaLCD", 255, 0, 255}, {"White", 255, 255, 255}},
    {"Neon", {"Black", 0, 0, 0}, {"MagentaLCD", 255, 0, 255}, {"Cyan", 0, 255, 255}},
    {"Sunset", {"Orange", 255, 165, 0}, {"RedLCD", 255, 0, 0}, {"Yellow", 255, 255, 0}},
    {"Nature", {"Green", 0, 128, 0}, {"GreenLCD", 0, 255, 0}, {"Brown", 165, 42, 42}},
    {"Ocean", {"Blue", 0, 0, 255}, {"CyanLCD", 0, 255, 255}, {"White", 255, 255, 255}},
    {"Candy", {"Pink", 255, 192, 203}, {"MagentaLCD", 255, 0, 255}, {"Yellow", 255, 255, 0}},
    {"Steampunk",
     {"Leather", 139, 69, 19},
     {"AmberLCD", 255, 191, 0},
     {"Midnight Blue", 0, 51, 102}},
    {"Electric Night",
     {"Midnight Blue", 0, 51, 102},
     {"Electric Lime", 204, 255, 0},
     {"White", 255, 255, 255}},
    {"Rustic Charm", {"Walnut", 92, 51, 23}, {"AmberLCD", 255, 191, 0}, {"Mahogany", 103, 1, 1}},
    {"Ice Planet", {"Tungsten", 50, 50, 50}, {"Ice Blue", 153, 255, 255}, {"White", 255, 255, 255}},
    {"Royal Velvet", {"Mahogany", 103, 1, 1}, {"PurpleLCD", 128, 0, 128}, {"Gold", 255, 215, 0}},
}};

namespace {

bool sameColor(const ColorEntry& entry, int r, int g, int b) {
    return entry.r == r && entry.g == g && entry.b == b;
}

} // namespace

// An index out of the table (a damaged dialog value) leaves the colours as they are.
void applyScheme(DisplayState& st, int index) {
    if (index < 0 || index >= static_cast<int>(colorSchemes.size()))
        return;
    const ColorScheme& scheme = colorSchemes[static_cast<size_t>(index)];
    st.textR = scheme.text.r;
    st.textG = scheme.text.g;
    st.textB = scheme.text.b;
    st.bkGrR = scheme.background.r;
    st.bkGrG = scheme.background.g;
    st.bkGrB = scheme.background.b;
    st.songR = scheme.lcd.r;
    st.songG = scheme.lcd.g;
    st.songB = scheme.lcd.b;
}

int applyRandomColorScheme(DisplayState& st) {
    const int index = st.rand15.next() % static_cast<int>(colorSchemes.size());
    applyScheme(st, index);
    return index;
}

std::optional<int> findSchemeIndex(const DisplayState& st) {
    for (size_t i = 0; i < colorSchemes.size(); ++i) {
        const ColorScheme& scheme = colorSchemes[i];
        if (sameColor(scheme.text, st.textR, st.textG, st.textB) &&
            sameColor(scheme.background, st.bkGrR, st.bkGrG, st.bkGrB) &&
            sameColor(scheme.lcd, st.songR, st.songG, st.songB))
            return static_cast<int>(i);
    }
    return std::nullopt;
}

std::optional<int> findNamedColor(int r, int g, int b) {
    for (size_t i = 0; i < namedColors.size(); ++i)
        if (sameColor(namedColors[i], r, g, b))
            return static_cast<int>(i);
    return std::nullopt;
}
