#pragma once
#include "input/search.h"

#include <cstdint>
#include <optional>
#include <string>

// What the logic asks of the window system, and what it tells it. The Qt host installs the real
// port; tests install a recorder; with none installed, timers are ignored, a message box becomes
// a line on the error stream and the notice goes nowhere, so nothing modal can ever block a run
// without a user. Called on the user-interface thread only.
namespace host {

// Timer ids of the main window.
constexpr int timerRepaint = 1;
constexpr int timerVolumeLatch = 2;
constexpr int timerPoll = 3;
constexpr int timerStationTags = 4;
constexpr int timerBorderless = 101;
constexpr int timerVolumeText = 2001;

enum class Icon { None, Error, Warning, Information };

// What changed, for those who show the player (the screen, the desktop's media controls) and
// would otherwise have to poll it.
enum class PlayerChange { Song, PlayState, Volume, Position };

struct Rect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

struct Port {
    virtual ~Port() = default;
    virtual void setTimer(int id, int milliseconds) = 0;
    virtual void killTimer(int id) = 0;
    // rect null: the whole client area.
    virtual void invalidate(const Rect* rect, bool erase) = 0;
    // owned: the box belongs to the main window rather than standing alone.
    virtual void messageBox(const std::string& text, const std::string& title, Icon icon,
                            bool owned) = 0;
    // Raised after the change has been made: the song, the play state (pause, stop, start), the
    // volume, or a jump of the position.
    virtual void playerChanged(PlayerChange what) = 0;
    // Closes the main window as its close box does: the player shuts down once and exits 0.
    virtual void closeMainWindow() = 0;
    // Opens a new window of the option dialog with this command id, owned by the main window.
    virtual void openDialog(int id) = 0;
    // Whether the key of this Windows virtual-key code is down now, whichever window has the
    // focus; false where the window system cannot tell.
    virtual bool keyIsDown(int vk) = 0;
    // Every virtual key down now, in one look at the keyboard where the window system allows.
    virtual KeysDown keysDown();
    // A system-wide chord for the action table's row id: modifiers 2 Ctrl, 1 Alt, 4 Shift,
    // added; vk a Windows virtual-key code (0: no key). Its presses come back as
    // runKeyboardAction(id). A chord another program holds never fires, unnoticed.
    virtual void registerHotkey(int id, int modifiers, std::uint32_t vk) = 0;
    virtual void unregisterHotkey(int id) = 0;
    // The system's folder picker over the active window: the folder chosen, or nothing when the
    // user cancels or nobody could answer.
    virtual std::optional<std::string> pickFolder(const std::string& title) = 0;
    // Hands a web address to the user's browser.
    virtual void openUrl(const std::string& address) = 0;
    // The main window's form, bare (no frame, no menu bar) or framed, changed with its outer size
    // and place kept; and its opacity, 0 to 255.
    virtual bool isBorderless() = 0;
    virtual void setBorderless(bool bare) = 0;
    virtual void setOpacity(int alpha) = 0;
};

// The port stays owned by the caller; pass nullptr to remove it. Returns the one it replaced.
Port* installPort(Port* port);

void setTimer(int id, int milliseconds);
void killTimer(int id);
void invalidate(const Rect* rect, bool erase);
void messageBox(const std::string& text, const std::string& title, Icon icon, bool owned);
void notifyPlayerChanged(PlayerChange what);
void closeMainWindow();
void openDialog(int id);
bool keyIsDown(int vk);
KeysDown keysDown();
void registerHotkey(int id, int modifiers, std::uint32_t vk);
void unregisterHotkey(int id);
std::optional<std::string> pickFolder(const std::string& title);
void openUrl(const std::string& address);
bool isBorderless();
void setBorderless(bool bare);
void setOpacity(int alpha);

} // namespace host
