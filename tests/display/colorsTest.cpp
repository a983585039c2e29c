#include "display/colors.h"

#include "display/displayState.h"

#include <gtest/gtest.h>

namespace {

// The nine colour settings, in the order text, background, LCD.
std::array<int*, 9> colorFields(DisplayState& st) {
    return {&st.textR, &st.textG, &st.textB, &st.bkGrR, &st.bkGrG,
            &st.bkGrB, &st.songR, &st.songG, &st.songB};
}

} // namespace

TEST(ColorSchemes, TheDefaultColoursAreClassicAndAnyOneValueChangedMatchesNoScheme) {
    DisplayState st;
    EXPECT_EQ(findSchemeIndex(st), 0);
    for (int* field : colorFields(st)) {
        const int kept = *field;
        *field = kept == 255 ? 254 : kept + 1;
        EXPECT_EQ(findSchemeIndex(st), std::nullopt) << "changed to " << *field;
        *field = kept;
    }
}

// Each field taken from its own entry: a scheme applied is found again under its own index.
TEST(ColorSchemes, EachOfTheEighteenSchemesIsFoundAgainOnceApplied) {
    ASSERT_EQ(colorSchemes.size(), 18u);
    EXPECT_EQ(colorSchemes[17].name, "Royal Velvet");
    DisplayState st;
    for (int index = 0; index < 18; ++index) {
        applyScheme(st, index);
        EXPECT_EQ(findSchemeIndex(st), index) << colorSchemes[static_cast<size_t>(index)].name;
    }
    applyScheme(st, 17);
    EXPECT_EQ(std::tie(st.textR, st.bkGrR, st.songB), std::tuple(255, 103, 128));
}

TEST(ColorSchemes, TheRandomSchemeIsOneOfTheTableWhateverTheColoursWere) {
    for (std::uint32_t seed : {1u, 987654321u}) {
        DisplayState st;
        for (int* field : colorFields(st))
            *field = 300; // out of range, as a hand-edited file may hold
        st.rand15.seed(seed);
        applyRandomColorScheme(st);
        EXPECT_NE(findSchemeIndex(st), std::nullopt) << "seed " << seed;
    }
}

TEST(NamedColors, TheFirstRowOfTheseValuesWins) {
    struct Case {
        int r, g, b;
        std::optional<std::string> name;
    };
    for (const Case& c : {Case{35, 35, 35, "CarbonFiber"}, Case{0, 51, 102, "Midnight Blue"},
                          Case{35, 35, 36, std::nullopt}}) {
        std::optional<int> index = findNamedColor(c.r, c.g, c.b);
        std::optional<std::string> name;
        if (index)
            name = namedColors[static_cast<size_t>(*index)].name;
        EXPECT_EQ(name, c.name) << c.r << "," << c.g << "," << c.b;
    }
}
