#include "core/hotkeyOptions.h"
#include "core/playerState.h"
#include "core/windowEvents.h"
#include "dialogs/keyCaptureField.h"
#include "input/actionSteps.h"
#include "input/controllers.h"
#include "input/hotkeys.h"
#include "platform/sdlControllers.h"
#include "support/dialogHarness.h"
#include "support/output.h"
#include "support/virtualPads.h"

#include <QCheckBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QToolButton>
#include <gtest/gtest.h>

namespace {

constexpr int hotkeyDialog = 11;

bool ticked(Dialog& dialog, int id) {
    return static_cast<QCheckBox*>(dialog.control(id))->isChecked();
}
QComboBox* list(Dialog& dialog, int id) {
    return static_cast<QComboBox*>(dialog.control(id));
}
void press(QWidget* field, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
           const QString& text = "") {
    QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
    QApplication::sendEvent(field, &event);
}
// The up-down's arrow, as a user clicks it.
void stepUp(Dialog& dialog, int upDownId) {
    dialog.control(upDownId)->findChildren<QToolButton*>()[0]->click();
}

// The opening reads the file again, over edits an Exit left in the table; a row without a key
// stays blank with its boxes clear; nothing takes the focus, so no capture starts.
TEST(HotkeyDialog, OpensFromTheFileWithNoCapture) {
    Dialog dialog(hotkeyDialog, [](PlayerState& st) {
        st.hotkeyTable[action::nextSong] = {112, true, false, true, -1, -1};
        st.hotkeyTable[action::quit] = {0, true, true, true, -1, -1};
        ASSERT_TRUE(saveHotkeys(st, st.dataDirectory + "/hotkeyConfig.json"));
        st.hotkeyTable[action::nextSong].vkKey = 65; // left by an Exit without Save
        st.lowVolume = 0.555f;
        st.useRumble = false;
    });
    QApplication::processEvents();
    EXPECT_EQ(std::tuple(dialog.st.hotkeyTable[action::nextSong].vkKey, dialog.edit(101)->text()),
              std::tuple(112u, "F1"));
    EXPECT_EQ(std::tuple(ticked(dialog, 103), ticked(dialog, 104), ticked(dialog, 105)),
              std::tuple(true, false, true));
    EXPECT_EQ(std::tuple(dialog.edit(147)->text(), ticked(dialog, 149)), std::tuple("", false));
    EXPECT_EQ(dynamic_cast<KeyCaptureField*>(QApplication::focusWidget()), nullptr);
    EXPECT_EQ(std::tuple(dialog.edit(174)->text(), ticked(dialog, 171), ticked(dialog, 170)),
              std::tuple("55", true, false));
    // No controller: only "None", and a row without an input shows an empty head.
    EXPECT_EQ(std::tuple(list(dialog, 102)->count(), list(dialog, 102)->currentIndex()),
              std::tuple(1, -1));
    grabDialog(dialog, "dialog-11");
}

// Tab would move the focus on, and Ctrl alone is a modifier; both bind, and Save writes the
// boxes' flags, a flag without a key too, and registers the chords anew.
TEST(HotkeyDialog, CapturesTabAndCtrlAloneAndSaveWritesRegistersAndCloses) {
    Dialog dialog(hotkeyDialog);
    dialog.window->activateWindow();
    QApplication::processEvents();
    dialog.edit(101)->setFocus();
    EXPECT_EQ(dialog.edit(101)->text(), "Press a key...");
    press(dialog.edit(101), Qt::Key_Tab);
    EXPECT_EQ(std::tuple(QApplication::focusWidget(), dialog.edit(101)->text()),
              std::tuple(dialog.edit(101), "Tab"));
    dialog.edit(107)->setFocus();
    press(dialog.edit(107), Qt::Key_Control, Qt::ControlModifier);
    press(dialog.edit(107), Qt::Key_Q, Qt::NoModifier, "q"); // after the capture: no text
    EXPECT_EQ(dialog.edit(107)->text(), "Control");
    for (int box : {103, 115}) // Ctrl of the first row, Alt of a row without a key
        static_cast<QCheckBox*>(dialog.control(box))->click();

    dialog.click(106);
    EXPECT_FALSE(dialog.window->isVisible());
    InputState saved;
    ASSERT_TRUE(loadHotkeys(saved, dialog.data.str() + "/hotkeyConfig.json"));
    EXPECT_EQ(std::tuple(saved.hotkeyTable[0].vkKey, saved.hotkeyTable[0].ctrl,
                         saved.hotkeyTable[1].vkKey, saved.hotkeyTable[2].alt,
                         saved.hotkeyTable[2].vkKey),
              std::tuple(9u, true, 17u, true, 0u));
    ASSERT_EQ(dialog.platform.hotkeys.size(), 30u);
    EXPECT_EQ(dialog.platform.hotkeys[0], (RecordingPlatform::Hotkey{0, 2, 9}));

    Dialog failing(hotkeyDialog, [](PlayerState& st) { st.dataDirectory += "/missing"; });
    const std::string errors = errorsOf([&] { failing.click(106); });
    EXPECT_NE(errors.find("Unable to open file for writing: "), std::string::npos) << errors;
    EXPECT_FALSE(failing.window->isVisible());
    EXPECT_TRUE(failing.platform.boxes.empty());
}

// The arrows store the number they start from, one step behind the field; typing stores nothing.
// Of the rumble boxes of a line one is always ticked.
TEST(HotkeyDialog, SpinsStoreOneStepBehindAndRumbleBoxesExcludeEachOther) {
    Dialog dialog(hotkeyDialog);
    PlayerState& st = dialog.st;
    stepUp(dialog, hotkeySpin::lowVolume);
    EXPECT_EQ(std::tuple(dialog.edit(174)->text(), st.lowVolume), std::tuple("11", 0.10f));
    dialog.edit(190)->setText("4000");
    EXPECT_EQ(st.rumbleTime, 500);
    stepUp(dialog, hotkeySpin::rumbleTime);
    EXPECT_EQ(std::tuple(st.rumbleTime, dialog.edit(190)->text()), std::tuple(4000, "4001"));

    // {box clicked, useRumble after, "Off" ticked, "On" ticked}; useRumble starts true.
    const std::tuple<int, bool, bool, bool> clicks[] = {
        {170, false, true, false}, // "On" cleared ticks "Off"
        {171, true, false, true},  // "Off" cleared ticks "On"
        {171, false, true, false}, // "Off" ticked clears "On"
        {170, true, false, true},  // "On" ticked clears "Off"
    };
    for (auto [id, setting, off, on] : clicks) {
        static_cast<QCheckBox*>(dialog.control(id))->click();
        EXPECT_EQ(std::tuple(st.useRumble, ticked(dialog, 171), ticked(dialog, 170)),
                  std::tuple(setting, off, on))
            << id;
    }
    static_cast<QCheckBox*>(dialog.control(187))->click();
    EXPECT_EQ(std::tuple(st.useRumbleToggle, st.useRumble), std::tuple(false, true));
}

// A real controller on SDL's virtual joystick: its family's words fill the lists, a choice goes
// into the table by the list's own rule, and the read-out follows what slot 0 presses.
TEST(HotkeyDialog, ListsAndReadOutFollowAVirtualController) {
    VirtualPads pads;
    SdlControllers port;
    pads.attach("Xbox 360 Controller");
    Dialog dialog(hotkeyDialog, [](PlayerState& st) {
        logOf([&] { openControllers(st); });
        st.hotkeyTable[action::nextSong].gameControllerButton = 1;
        st.hotkeyTable[action::previousSong].gameControllerTrigger = 5;
        st.hotkeyTable[action::controllerEnable].gameControllerButton = 9;
        saveHotkeys(st, st.dataDirectory + "/hotkeyConfig.json");
    });
    PlayerState& st = dialog.st;
    EXPECT_EQ(std::tuple(list(dialog, 102)->currentText(), list(dialog, 108)->currentText(),
                         list(dialog, 152)->currentText(), list(dialog, 113)->count()),
              std::tuple("B", "RT", "Left Shoulder", 24));

    // {list, entry, action, button and trigger after}; the enable's list knows no triggers.
    const std::tuple<int, int, int, int, int> choices[] = {{102, 22, 0, -1, 4},
                                                           {102, 0, 0, -1, -1},
                                                           {108, 3, 1, 2, -1},
                                                           {152, 23, 10, 22, -1},
                                                           {152, 0, 10, -1, -1}};
    for (auto [id, entry, action, button, trigger] : choices) {
        Q_EMIT list(dialog, id)->activated(entry); // a choice of the user's
        EXPECT_EQ(std::tuple(st.hotkeyTable[action].gameControllerButton,
                             st.hotkeyTable[action].gameControllerTrigger),
                  std::tuple(button, trigger))
            << id << " " << entry;
    }

    pads.press(0, SDL_CONTROLLER_BUTTON_A);
    onTimer(st, host::timerPoll);
    const std::vector<std::string> labels = dialog.labels();
    EXPECT_EQ(std::vector(labels.end() - 3, labels.end()),
              (std::vector<std::string>{"Number of Game Contorllers Detected 1",
                                        "Controller 1: Xbox 360 Controller",
                                        "Current Joystick 1 Buton Pressed: A"}));
    EXPECT_EQ(paintedTexts(*dialog.window).back().box.y, 640);

    // Refresh finds no controller now, and the lists keep their entries.
    pads.detach(0);
    logOf([&] {
        dialog.click(154);
        onTimer(st, host::timerPoll);
    });
    const RecordingCanvas::Call readOut = paintedTexts(*dialog.window).back();
    EXPECT_EQ(std::tuple(list(dialog, 102)->count(), readOut.text, readOut.box.y),
              std::tuple(24, "Current Joystick 1 Buton Pressed: (null)", 620));
    closeControllers(st);
}

} // namespace
