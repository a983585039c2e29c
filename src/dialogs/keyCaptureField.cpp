#include "dialogs/keyCaptureField.h"

#include "core/playerState.h"
#include "input/keyNames.h"

#include <QKeyEvent>
#include <array>
#include <utility>

namespace {

// Qt's keys that have no printable character, by virtual-key code.
constexpr std::array<std::pair<int, std::uint32_t>, 26> qtKeys{{
    {Qt::Key_Backspace, 8},    {Qt::Key_Tab, 9},     {Qt::Key_Backtab, 9},
    {Qt::Key_Return, 13},      {Qt::Key_Enter, 13},  {Qt::Key_Shift, 16},
    {Qt::Key_Control, 17},     {Qt::Key_Alt, 18},    {Qt::Key_Pause, 19},
    {Qt::Key_CapsLock, 20},    {Qt::Key_Escape, 27}, {Qt::Key_PageUp, 33},
    {Qt::Key_PageDown, 34},    {Qt::Key_End, 35},    {Qt::Key_Home, 36},
    {Qt::Key_Left, 37},        {Qt::Key_Up, 38},     {Qt::Key_Right, 39},
    {Qt::Key_Down, 40},        {Qt::Key_Insert, 45}, {Qt::Key_Delete, 46},
    {Qt::Key_Meta, 91},        {Qt::Key_Menu, 93},   {Qt::Key_NumLock, 144},
    {Qt::Key_ScrollLock, 145}, {Qt::Key_AltGr, 18},
}};

// The keypad's keys keep codes of their own, apart from the keys that type the same character:
// its "*+,-./" follow each other in Qt's numbering as in the virtual keys'.
std::uint32_t keypadKey(int key) {
    if (key >= Qt::Key_0 && key <= Qt::Key_9)
        return 96 + static_cast<std::uint32_t>(key - Qt::Key_0);
    if (key >= Qt::Key_Asterisk && key <= Qt::Key_Slash)
        return 106 + static_cast<std::uint32_t>(key - Qt::Key_Asterisk);
    return 0;
}

} // namespace

KeyCaptureField::KeyCaptureField(PlayerState& st, int id, bool& capturing, QWidget* parent)
    : QLineEdit(parent), st_(st), id_(id), capturing_(capturing) {
    // Nothing may enter the field but the name of a key: no drop, no paste from a menu.
    setAcceptDrops(false);
    setContextMenuPolicy(Qt::NoContextMenu);
}

std::uint32_t KeyCaptureField::virtualKeyOf(const QKeyEvent& event) {
    if (std::uint32_t fromKeysym = virtualKeyOfKeysym(event.nativeVirtualKey()))
        return fromKeysym;
    const int key = event.key();
    if (event.modifiers() & Qt::KeypadModifier)
        if (std::uint32_t vk = keypadKey(key))
            return vk;
    // Qt numbers a printable key by its Latin-1 character, which is also its X keysym.
    if (key >= 0x20 && key <= 0x7E)
        return virtualKeyOfKeysym(static_cast<std::uint32_t>(key));
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24)
        return 112 + static_cast<std::uint32_t>(key - Qt::Key_F1);
    for (const auto& [qtKey, vk] : qtKeys)
        if (qtKey == key)
            return vk;
    return 0;
}

// Tab binds like any key instead of moving the focus on.
bool KeyCaptureField::event(QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        auto* press = static_cast<QKeyEvent*>(event);
        if (press->key() == Qt::Key_Tab || press->key() == Qt::Key_Backtab) {
            keyPressEvent(press);
            return true;
        }
    }
    return QLineEdit::event(event);
}

// The capture starts with the focus and lasts until a key goes down in a focused field, also
// across a loss of the focus.
void KeyCaptureField::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    setText("Press a key...");
    capturing_ = true;
}

void KeyCaptureField::keyPressEvent(QKeyEvent* event) {
    event->accept();
    if (capturing_) {
        const std::uint32_t vk = virtualKeyOf(*event);
        setText(QString::fromStdString(keyName(vk)));
        capturing_ = false;
        if (id_ >= 0 && id_ < static_cast<int>(st_.hotkeyTable.size()))
            st_.hotkeyTable[id_].vkKey = vk;
        return;
    }
    // A key that types something, or pastes, is swallowed; the others (arrows, Delete) act on the
    // text.
    if (!event->text().isEmpty() || event->matches(QKeySequence::Paste))
        return;
    QLineEdit::keyPressEvent(event);
}

void KeyCaptureField::inputMethodEvent(QInputMethodEvent* event) {
    event->accept();
}
