#include "dialogs/keyCaptureField.h"

#include "core/playerState.h"
#include "input/keyNames.h"

#include <QKeyEvent>
#include <array>
#include <utility>

namespace {

// Qt's keys that are no letter, digit or function key, by virtual-key code.
constexpr std::array<std::pair<int, std::uint32_t>, 27> qtKeys{{
    {Qt::Key_Backspace, 8}, {Qt::Key_Tab, 9},       {Qt::Key_Return, 13},      {Qt::Key_Enter, 13},
    {Qt::Key_Shift, 16},    {Qt::Key_Control, 17},  {Qt::Key_Alt, 18},         {Qt::Key_Pause, 19},
    {Qt::Key_CapsLock, 20}, {Qt::Key_Escape, 27},   {Qt::Key_Space, 32},       {Qt::Key_PageUp, 33},
    {Qt::Key_PageDown, 34}, {Qt::Key_End, 35},      {Qt::Key_Home, 36},        {Qt::Key_Left, 37},
    {Qt::Key_Up, 38},       {Qt::Key_Right, 39},    {Qt::Key_Down, 40},        {Qt::Key_Insert, 45},
    {Qt::Key_Delete, 46},   {Qt::Key_NumLock, 144}, {Qt::Key_ScrollLock, 145}, {Qt::Key_Equal, 187},
    {Qt::Key_Plus, 187},    {Qt::Key_Minus, 189},   {Qt::Key_Comma, 188},
}};

} // namespace

KeyCaptureField::KeyCaptureField(PlayerState& st, int id, bool& capturing, QWidget* parent)
    : QLineEdit(parent), st_(st), id_(id), capturing_(capturing) {}

std::uint32_t KeyCaptureField::virtualKeyOf(const QKeyEvent& event) {
    if (std::uint32_t fromKeysym = virtualKeyOfKeysym(event.nativeVirtualKey()))
        return fromKeysym;
    const int key = event.key();
    if ((event.modifiers() & Qt::KeypadModifier) && key >= Qt::Key_0 && key <= Qt::Key_9)
        return 96 + static_cast<std::uint32_t>(key - Qt::Key_0);
    if ((key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9))
        return static_cast<std::uint32_t>(key); // Qt numbers them as the virtual keys do
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24)
        return 112 + static_cast<std::uint32_t>(key - Qt::Key_F1);
    for (const auto& [qtKey, vk] : qtKeys)
        if (qtKey == key)
            return vk;
    return 0;
}

// The capture starts with the focus and lasts until a key goes down in a focused field, also
// across a loss of the focus.
void KeyCaptureField::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    setText("Press a key...");
    capturing_ = true;
}

void KeyCaptureField::keyPressEvent(QKeyEvent* event) {
    if (capturing_) {
        const std::uint32_t vk = virtualKeyOf(*event);
        setText(QString::fromStdString(keyName(vk)));
        capturing_ = false;
        if (id_ >= 0 && id_ < static_cast<int>(st_.hotkeyTable.size()))
            st_.hotkeyTable[id_].vkKey = vk;
        return;
    }
    // A key that types something is swallowed; the others (arrows, Delete) act on the text.
    if (!event->text().isEmpty())
        return;
    QLineEdit::keyPressEvent(event);
}
