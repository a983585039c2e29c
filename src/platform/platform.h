#pragma once
#include <string>

// What the logic asks of the window system. The Qt host installs the real backend; tests
// install a recorder; with none installed, timers are ignored and a message box becomes a line
// on the error stream, so nothing modal can ever block a run without a user.
namespace platform {

// Timer ids of the main window.
constexpr int timerRepaint = 1;
constexpr int timerVolumeLatch = 2;
constexpr int timerPoll = 3;
constexpr int timerStationTags = 4;
constexpr int timerBorderless = 101;
constexpr int timerVolumeText = 2001;

enum class Icon { None, Error, Warning, Information };

struct Rect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

struct Backend {
    virtual ~Backend() = default;
    virtual void setTimer(int id, int milliseconds) = 0;
    virtual void killTimer(int id) = 0;
    // rect null: the whole client area.
    virtual void invalidate(const Rect* rect, bool erase) = 0;
    // owned: the box belongs to the main window rather than standing alone.
    virtual void messageBox(const std::string& text, const std::string& title, Icon icon,
                            bool owned) = 0;
};

// The backend stays owned by the caller; pass nullptr to remove it. Returns the one it replaced.
Backend* installBackend(Backend* backend);

void setTimer(int id, int milliseconds);
void killTimer(int id);
void invalidate(const Rect* rect, bool erase);
void messageBox(const std::string& text, const std::string& title, Icon icon, bool owned);

} // namespace platform
