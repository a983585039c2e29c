#include "core/hotkeyOptions.h"
#include "core/playerState.h"
#include "core/startup.h"
#include "dialogs/controls.h"
#include "dialogs/dialogs.h"
#include "dialogs/keyCaptureField.h"
#include "display/panels.h"
#include "input/actionSteps.h"
#include "input/controllers.h"
#include "input/keyNames.h"
#include "platform/dialogWindows.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <algorithm>
#include <array>
#include <vector>

namespace {

constexpr int listHeight = 24;
constexpr int readOutWidth = 300;
constexpr int readOutHeight = 40;

// One flag for every key field of a window: a capture begun in one field ends with the next key
// pressed in any of them.
struct CaptureFlag : QObject {
    using QObject::QObject;
    bool on = false;
};

struct BottomLabel {
    int y;
    const char* text;
};
constexpr std::array<BottomLabel, 4> bottomLabels{{{enableListY, enableListLabel},
                                                   {510, "Volume Toggle:"},
                                                   {540, "Button Rumble:"},
                                                   {570, "Toggle Rumble:"}}};

void paintHotkeyOptions(Canvas& canvas, const PlayerState& st) {
    const TextBoxStyle style{.size = 16, .scaled = false, .bold = true, .wrapped = true};
    TextBoxStyle centred = style;
    centred.centered = true;
    drawTextBox(canvas, st, "Key Board", {150, 7, 100, 80}, centred);
    drawTextBox(canvas, st, "Game Controller", {480, 7, 140, 80}, centred);
    for (const HotkeyRow& row : hotkeyRows)
        drawTextBox(canvas, st, row.label, {5, row.y, 450, 80}, style);
    for (const BottomLabel& label : bottomLabels)
        drawTextBox(canvas, st, label.text, {5, label.y, 450, 80}, style);
    drawTextBox(canvas, st, controllerCountLine(st), {5, 600, 450, 20}, style);
    for (int slot = 0; slot < std::min(st.controllerCount, maxControllers); ++slot)
        drawTextBox(canvas, st, controllerLine(st, slot), {5, 620 + 20 * slot, 450, 20}, style);
    TextBoxStyle framed = centred;
    framed.middle = true;
    framed.border = 1;
    drawTextBox(canvas, st, pressedButtonLine(st),
                {5, pressedButtonTop(st), readOutWidth, readOutHeight}, framed);
}

// A controller input list, filled for the controller in slot 0, showing the row's input when the
// list has its word, and storing the user's choice at once.
void addInputList(DialogWindow& window, PlayerState& st, int id, QRect box, int actionId) {
    QComboBox* list = makeDropDown(&window, id, box);
    const std::vector<InputEntry> entries = fillInputList(st);
    for (const auto& [text, value] : entries)
        list->addItem(QString::fromStdString(text), value);
    const HotkeyBinding& row = st.hotkeyTable[static_cast<std::size_t>(actionId)];
    list->setCurrentIndex(-1); // no input: an empty head, not "None"
    if (row.gameControllerButton != -1 || row.gameControllerTrigger != -1)
        list->setCurrentIndex(
            selectBoundInput(entries, st, row.gameControllerButton, row.gameControllerTrigger));
    QObject::connect(list, &QComboBox::activated, list, [&st, list, actionId](int index) {
        chooseControllerInput(st, actionId, list->itemData(index).toInt());
    });
}

// The key rows: a key field, the three modifier boxes and an input list each. Returns the boxes
// in row order, for Save.
std::vector<std::array<QCheckBox*, 3>> addKeyRows(DialogWindow& window, PlayerState& st,
                                                  bool& capturing) {
    std::vector<std::array<QCheckBox*, 3>> boxes;
    for (const HotkeyRow& row : hotkeyRows) {
        const int n = row.keyFieldId;
        auto* field = new KeyCaptureField(st, row.actionId, capturing, &window);
        field->setObjectName(QString::number(n));
        field->setGeometry(180, row.y, 100, 20);
        const std::array<QCheckBox*, 3> flags{
            makeCheckBox(&window, n + 2, "Ctrl", {300, row.y, 60, 20}),
            makeCheckBox(&window, n + 3, "Alt", {370, row.y, 60, 20}),
            makeCheckBox(&window, n + 4, "Shift", {430, row.y, 60, 20})};
        // A row without a key opens blank with its boxes clear, whatever its flags say.
        const HotkeyBinding& binding = st.hotkeyTable[static_cast<std::size_t>(row.actionId)];
        if (binding.vkKey != 0) {
            field->setText(QString::fromStdString(keyName(binding.vkKey)));
            flags[0]->setChecked(binding.ctrl);
            flags[1]->setChecked(binding.alt);
            flags[2]->setChecked(binding.shift);
        }
        addInputList(window, st, n + 1, {510, row.y, 140, listHeight}, row.actionId);
        boxes.push_back(flags);
    }
    return boxes;
}

void addLabel(DialogWindow& window, const char* text, int x, int y) {
    auto* label = new QLabel(text, &window);
    label->setGeometry(x, y, 45, 20);
}

// "Off" and "On" of a rumble line: one of the two is ticked after every click.
void addRumbleLine(DialogWindow& window, bool& setting, int offId, int onId, int y) {
    QCheckBox* off = makeCheckBox(&window, offId, "Off", {150, y, 60, 20});
    QCheckBox* on = makeCheckBox(&window, onId, "On", {220, y, 60, 20});
    off->setChecked(!setting);
    on->setChecked(setting);
    QObject::connect(on, &QCheckBox::clicked, on, [&setting, off](bool ticked) {
        off->setChecked(clickRumbleBox(setting, true, ticked));
    });
    QObject::connect(off, &QCheckBox::clicked, off, [&setting, on](bool ticked) {
        on->setChecked(clickRumbleBox(setting, false, ticked));
    });
}

// A number of the bottom lines: only a step of its arrows stores, and one step late; what is
// typed stays in the field.
void addSpinNumber(DialogWindow& window, PlayerState& st, SpinIds ids, QRect box, int maximum) {
    makeSpinField(
        &window, ids, box, spinOpening(st, ids.upDown), maximum, [](const QString&) {},
        [&st, upDown = ids.upDown](int from) { stepHotkeySpin(st, upDown, from); });
}

void addBottomLines(DialogWindow& window, PlayerState& st) {
    addInputList(window, st, enableListId, {180, enableListY, 140, listHeight},
                 action::controllerEnable);
    addLabel(window, "Min:", 150, 510);
    addSpinNumber(window, st, {174, hotkeySpin::lowVolume}, {200, 510, 50, 20}, 100);
    addLabel(window, "Max:", 300, 510);
    addSpinNumber(window, st, {175, hotkeySpin::highVolume}, {350, 510, 50, 20}, 100);
    addRumbleLine(window, st.useRumble, 171, 170, 540);
    addLabel(window, "Time:", 300, 540);
    addSpinNumber(window, st, {190, hotkeySpin::rumbleTime}, {350, 540, 55, 20}, 5000);
    addRumbleLine(window, st.useRumbleToggle, 187, 186, 570);
    addLabel(window, "Time:", 300, 570);
    addSpinNumber(window, st, {191, hotkeySpin::rumbleTimeToggle}, {350, 570, 55, 20}, 5000);
}

void addButtons(DialogWindow& window, PlayerState& st,
                std::vector<std::array<QCheckBox*, 3>> boxes) {
    QObject::connect(makeButton(&window, 106, "Save", {500, 500, 150, 30}), &QPushButton::clicked,
                     &window, [&window, &st, boxes = std::move(boxes)] {
                         std::array<ChordFlags, 15> flags{};
                         for (std::size_t i = 0; i < flags.size(); ++i)
                             flags[i] = {boxes[i][0]->isChecked(), boxes[i][1]->isChecked(),
                                         boxes[i][2]->isChecked()};
                         saveHotkeyOptions(st, flags);
                         window.close();
                     });
    QObject::connect(makeButton(&window, 153, "Disable Joystick", {500, 550, 150, 30}),
                     &QPushButton::clicked, &window, [&window, &st] {
                         closeControllers(st);
                         window.update();
                     });
    // The lists keep the entries of the controller they were filled for.
    QObject::connect(makeButton(&window, 154, "Refresh Joystick", {500, 600, 150, 30}),
                     &QPushButton::clicked, &window, [&window, &st] {
                         closeControllers(st);
                         openControllers(st);
                         window.update();
                     });
    QObject::connect(makeButton(&window, 3007, "Exit", {500, 650, 150, 30}), &QPushButton::clicked,
                     &window, &QWidget::close);
}

} // namespace

// Every action's key chord and controller input, the volume presets and the rumbles. Keys and
// inputs act on the table at once, the modifiers at Save, which alone writes the file and
// registers the chords anew.
void fillHotkeyDialog(DialogWindow& window, PlayerState& st) {
    loadKeyBindings(st); // the file again, over what an Exit without Save left in the table
    auto* tick = new QTimer(&window); // stops with the window
    QObject::connect(tick, &QTimer::timeout, &window, [&window, &st] {
        window.update(5, pressedButtonTop(st), readOutWidth, readOutHeight);
    });
    tick->start(100);

    auto* capture = new CaptureFlag(&window);
    std::vector<std::array<QCheckBox*, 3>> boxes = addKeyRows(window, st, capture->on);
    addBottomLines(window, st);
    addButtons(window, st, std::move(boxes));
    // The window itself takes the focus: a key field with it would start a capture at once.
    window.setFocus();
    window.paint = [&st](Canvas& canvas) { paintHotkeyOptions(canvas, st); };
}
