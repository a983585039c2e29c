#include "core/playerState.h"
#include "core/visualOptions.h"
#include "display/colors.h"
#include "platform/qtBitmaps.h"
#include "support/currentDirectory.h"
#include "support/dialogHarness.h"

#include <QComboBox>
#include <gtest/gtest.h>

namespace {

constexpr int visualDialog = 15;

QComboBox* list(Dialog& dialog, int id) {
    return static_cast<QComboBox*>(dialog.control(id));
}
QString textOf(Dialog& dialog, int id) {
    return static_cast<QPushButton*>(dialog.control(id))->text();
}
std::tuple<int, int, int> textColour(const PlayerState& st) {
    return {st.textR, st.textG, st.textB};
}

TEST(VisualDialog, ListsStandAtTheirPlacesAndOpenOnTheLook) {
    Dialog dialog(visualDialog, [](PlayerState& st) {
        st.textures = {{8, 8, "LCD"}, {8, 8, "cement"}, {8, 8, "wood"}};
        st.currentBkTextureName = "Wood"; // other capitals: no match
        st.borderlessAuto = 1;
    });
    // {id, place, selection at the opening}: the Classic look's colours and scheme.
    const std::tuple<int, QRect, int> lists[] = {
        {3001, {20, 115, 100, 24}, 1},  {3002, {220, 115, 100, 24}, 14},
        {3003, {420, 115, 100, 24}, 0}, {3005, {10, 276, 150, 24}, 0},
        {3009, {10, 330, 150, 24}, 1},  {3010, {10, 390, 150, 24}, -1}};
    for (auto [id, box, selected] : lists)
        EXPECT_EQ(std::tuple(list(dialog, id)->geometry(), list(dialog, id)->currentIndex()),
                  std::tuple(box, selected))
            << id;
    EXPECT_EQ(std::tuple(textOf(dialog, 3006), textOf(dialog, 3008)),
              std::tuple("Random Color Scheme", "Auto Borderless: On"));
    grabDialog(dialog, "dialog-15");
}

TEST(VisualDialog, FieldsStoreWhatIsTypedAndTheWindowAlphaOnlyAValidNumberFloored) {
    Dialog dialog(visualDialog);
    PlayerState& st = dialog.st;
    dialog.edit(2006)->setText("999"); // the paint takes the low 8 bits
    dialog.edit(2023)->setText("0");
    EXPECT_EQ(std::tuple(st.textR, st.bkTextureAlpha, st.buttonsDirty), std::tuple(999, 0, true));

    st.buttonsDirty = false;
    // {typed, windowAlpha after}: floored at 80, capped at 255, nothing for an empty field.
    const std::pair<const char*, int> alphas[] = {{"10", 80}, {"300", 255}, {"", 255}, {"90", 90}};
    for (auto [typed, alpha] : alphas) {
        dialog.edit(windowAlphaEditId)->setText(typed);
        EXPECT_EQ(std::tuple(st.windowAlpha, dialog.platform.opacity), std::tuple(alpha, alpha))
            << typed;
    }
    EXPECT_FALSE(st.buttonsDirty);
}

// A scheme changes the player's colours and the colour lists, not the figures; a named colour
// then writes its three figures, and each counts, also one the field shows already.
TEST(VisualDialog, SchemesReselectTheListsOnlyAndNamedColoursStoreAllThreeFigures) {
    Dialog dialog(visualDialog);
    PlayerState& st = dialog.st;
    Q_EMIT list(dialog, 3005)->activated(11); // "Ocean", a choice of the user's
    EXPECT_EQ(std::tuple(st.bkGrR, st.bkGrG, st.bkGrB, st.buttonsDirty),
              std::tuple(0, 0, 255, true));
    EXPECT_EQ(std::tuple(list(dialog, 3002)->currentText(), list(dialog, 3003)->currentText(),
                         dialog.edit(2009)->text()),
              std::tuple("BlueLCD", "CyanLCD", "35"));

    Q_EMIT list(dialog, 3005)->activated(4); // "Modern": black text
    EXPECT_EQ(textColour(st), std::tuple(0, 0, 0));
    Q_EMIT list(dialog, 3001)->activated(23); // "Yellow": the fields show 255 already
    EXPECT_EQ(textColour(st), std::tuple(255, 255, 0));
    EXPECT_EQ(dialog.edit(2008)->text(), "0");
    list(dialog, 3001)->setCurrentIndex(0); // the program's own selection stores nothing
    EXPECT_EQ(textColour(st), std::tuple(255, 255, 0));
}

TEST(VisualDialog, ButtonsFlipTheirSettingsWithTheirWordsAndRandomAsksNoRepaint) {
    Dialog dialog(visualDialog);
    PlayerState& st = dialog.st;
    st.rand15.seed(7);
    dialog.click(3006);
    EXPECT_EQ(std::tuple(textOf(dialog, 3006), st.randomColorPlayer, st.buttonsDirty),
              std::tuple("Random Radio Color: ON", 1, false));
    EXPECT_EQ(list(dialog, 3005)->currentIndex(), findSchemeIndex(st).value_or(-2));
    const auto drawn = textColour(st);
    dialog.click(3006);
    EXPECT_EQ(std::tuple(textOf(dialog, 3006), st.randomColorPlayer, textColour(st)),
              std::tuple("Random Radio Color: OFF", 0, drawn));

    EXPECT_EQ(textOf(dialog, 3008), "Auto Borderless: Off");
    dialog.click(3008);
    EXPECT_EQ(std::tuple(textOf(dialog, 3008), st.borderlessAuto),
              std::tuple("Auto Borderless: ON", 1));
    dialog.click(3008);
    EXPECT_EQ(textOf(dialog, 3008), "Auto Borderless: OFF");
    dialog.click(3004);
    EXPECT_TRUE(dialog.platform.borderless);
}

// A texture the folder listed but that will not load: its box, and the list keeps the choice.
TEST(VisualDialog, ATextureThatFailsShowsItsBoxAndStaysChosen) {
    TempDir empty;
    ScopedCurrentDirectory inside(empty.path());
    QtBitmapStore store;
    Dialog dialog(visualDialog, [](PlayerState& st) {
        st.textures = {{8, 8, "Gone"}, {8, 8, "Lost"}};
    });
    dialog.st.bitmapStore = &store;
    list(dialog, 3010)->setCurrentIndex(1); // the user's pick: selected, then told
    Q_EMIT list(dialog, 3010)->activated(1);
    ASSERT_EQ(dialog.platform.boxes.size(), 1u);
    EXPECT_EQ(std::tuple(dialog.platform.boxes[0].text, dialog.platform.boxes[0].title,
                         dialog.platform.boxes[0].icon),
              std::tuple("Failed to load Lost.bmp", "Error", host::Icon::None));
    EXPECT_EQ(std::tuple(list(dialog, 3010)->currentText(), dialog.st.currentBkTextureName),
              std::tuple("Lost", "wood"));
}

} // namespace
