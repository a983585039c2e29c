#include "dialogs/keyCaptureField.h"

#include "core/playerState.h"

#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <gtest/gtest.h>

namespace {

void focus(QWidget& field, QEvent::Type type) {
    QFocusEvent event(type, Qt::TabFocusReason);
    QApplication::sendEvent(&field, &event);
}

void press(QWidget& field, int key, const QString& text = "",
           Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
    QApplication::sendEvent(&field, &event);
}

TEST(KeyCaptureField, TakesTheNextKeyAfterTheFocusAModifierAloneTooAndTypesNothing) {
    PlayerState st;
    bool capturing = false;
    KeyCaptureField first(st, 3, capturing), second(st, 4, capturing);

    focus(first, QEvent::FocusIn);
    EXPECT_EQ(first.text(), "Press a key...");
    EXPECT_TRUE(capturing);
    press(first, Qt::Key_F1);
    EXPECT_EQ(first.text(), "F1");
    EXPECT_EQ(st.hotkeyTable[3].vkKey, 112u);
    EXPECT_FALSE(capturing);
    press(first, Qt::Key_X, "x"); // a character is swallowed
    EXPECT_EQ(first.text(), "F1");

    // Losing the focus keeps the capture; one flag serves every field.
    focus(first, QEvent::FocusIn);
    focus(first, QEvent::FocusOut);
    EXPECT_EQ(first.text(), "Press a key...");
    press(second, Qt::Key_Control, "", Qt::ControlModifier);
    EXPECT_EQ(second.text(), "Control");
    EXPECT_EQ(st.hotkeyTable[4].vkKey, 17u);

    focus(second, QEvent::FocusIn);
    press(second, Qt::Key_7, "7", Qt::KeypadModifier);
    EXPECT_EQ(st.hotkeyTable[4].vkKey, 103u);
    EXPECT_EQ(second.text(), "7"); // the keypad's 7 types "7"
}

// Keys as the offscreen platform sends them, with Qt's key and no keysym.
TEST(KeyCaptureField, MapsQtsKeysToVirtualKeysAndTheKeypadKeepsItsOwn) {
    const std::tuple<int, Qt::KeyboardModifiers, std::uint32_t> keys[] = {
        {Qt::Key_Plus, Qt::KeypadModifier, 107},   {Qt::Key_Plus, Qt::ShiftModifier, 187},
        {Qt::Key_Period, Qt::KeypadModifier, 110}, {Qt::Key_Semicolon, Qt::NoModifier, 186},
        {Qt::Key_Backtab, Qt::ShiftModifier, 9},   {Qt::Key_Exclam, Qt::ShiftModifier, 0}};
    for (auto [key, modifiers, vk] : keys)
        EXPECT_EQ(KeyCaptureField::virtualKeyOf(QKeyEvent(QEvent::KeyPress, key, modifiers)), vk);
}

} // namespace
