#pragma once
#include <QLineEdit>
#include <cstdint>

struct PlayerState;

// The key field of a row of the Hotkey dialog: it asks for a key when it gains the focus, and the
// next key pressed in it, Tab or a modifier alone too, becomes the row's key. Nothing can be typed
// into it. One capture flag serves every field of a dialog.
class KeyCaptureField : public QLineEdit {
  public:
    KeyCaptureField(PlayerState& st, int id, bool& capturing, QWidget* parent = nullptr);

    // The Windows virtual-key code of a Qt key press: from its X keysym where the window system
    // gives one, else from Qt's key; 0 when it has none.
    static std::uint32_t virtualKeyOf(const QKeyEvent& event);

  protected:
    bool event(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;

  private:
    PlayerState& st_;
    int id_;
    bool& capturing_;
};
