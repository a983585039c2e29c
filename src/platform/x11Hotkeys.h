#pragma once
#include <QAbstractNativeEventFilter>
#include <array>
#include <bitset>
#include <cstdint>
#include <vector>

struct PlayerState;
struct xcb_connection_t;
struct _XCBKeySymbols;

// System-wide hotkeys as key grabs on the X root window, and the global key state. Each chord is
// grabbed with and without Caps Lock and Num Lock; its presses, repeats included, run the
// keyboard route of its row. Without an X connection (Wayland, offscreen) nothing is grabbed,
// no key reads as down, and one line says so. On the user-interface thread.
class X11Hotkeys : public QAbstractNativeEventFilter {
  public:
    explicit X11Hotkeys(PlayerState& st);
    ~X11Hotkeys() override;
    X11Hotkeys(const X11Hotkeys&) = delete;
    X11Hotkeys& operator=(const X11Hotkeys&) = delete;

    bool active() const { return connection_ != nullptr; }
    void registerHotkey(int id, int modifiers, std::uint32_t vk);
    void unregisterHotkey(int id);
    bool keyIsDown(int vk);
    // The virtual keys down now, in one look at the keyboard.
    std::bitset<256> keysDown();
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

  private:
    struct Grab {
        int modifiers = 0; // the Windows form: 2 Ctrl, 1 Alt, 4 Shift
        std::uint32_t vk = 0;
        std::uint16_t mask = 0;             // the X modifier mask
        std::vector<std::uint8_t> keycodes; // those grabbed
    };
    std::vector<std::uint8_t> keycodesOf(std::uint32_t vk);
    void grab(Grab& grab);
    void ungrab(Grab& grab);
    std::uint16_t lockVariants(int index) const;

    PlayerState& st_;
    xcb_connection_t* connection_ = nullptr;
    _XCBKeySymbols* symbols_ = nullptr;
    std::uint32_t root_ = 0;
    std::uint16_t numLock_ = 0;
    std::array<Grab, 30> grabs_{};
};
