#include "input/keyNames.h"

#include "core/playerState.h"

#include <gtest/gtest.h>

namespace {

TEST(KeyNames, LettersDigitsAndTypedCharactersComeFirstThenTheTable) {
    const std::pair<std::uint32_t, const char*> names[] = {
        {65, "A"},      {48, "0"},        {0x70, "F1"}, {0xBB, "+"},      {0xBD, "-"},
        {7, "Unknown"}, {255, "Unknown"}, {32, " "},    {96, "0"},        {106, "*"},
        {46, "Delete"}, {17, "Control"},  {123, "F12"}, {124, "Unknown"}, {222, "'"}};
    for (auto [vk, name] : names)
        EXPECT_EQ(keyName(vk), name) << vk;
    // The key of "=" and "+" is found by either keysym; the keypad's Enter is Enter's twin.
    EXPECT_EQ(keysymsOfVirtualKey(0xBB), (std::vector<std::uint32_t>{'=', '+'}));
    EXPECT_EQ(keysymsOfVirtualKey(13).size(), 2u);
    EXPECT_TRUE(keysymsOfVirtualKey(0).empty());
}

TEST(ControllerNames, GoByTheFamilyOfTheControllerInSlotZero) {
    EXPECT_EQ(controllerFamily("Xbox Series X Controller"), ControllerFamily::Xbox);
    EXPECT_EQ(controllerFamily("PS5 DualSense"), ControllerFamily::PlayStation);
    EXPECT_EQ(controllerFamily("xbox pad"), ControllerFamily::Generic);
    EXPECT_EQ(buttonName(ControllerFamily::PlayStation, 3), "Triangle");
    EXPECT_EQ(buttonName(ControllerFamily::Xbox, 15), "Invalid");
    EXPECT_EQ(buttonName(ControllerFamily::Generic, 0), "Unknown Button"); // no system to ask

    PlayerState st;
    EXPECT_EQ(fillInputList(st), (std::vector<InputEntry>{{"None", -1}}));
    st.controllerNames[0] = "Xbox One";
    const std::vector<InputEntry> list = fillInputList(st);
    ASSERT_EQ(list.size(), 24u);
    EXPECT_EQ(list[1], (InputEntry{"A", 1}));
    EXPECT_EQ(list[23], (InputEntry{"RT", 23}));
    EXPECT_EQ(selectBoundInput(list, st, 1, -1), 2);
    EXPECT_EQ(selectBoundInput(list, st, -1, 5), 23);
    EXPECT_EQ(selectBoundInput(list, st, -1, 3), -1);
    // A row bound through another family's words is not found.
    st.controllerNames[0] = "DualShock 4";
    EXPECT_EQ(selectBoundInput(list, st, 0, -1), -1);
}

} // namespace
