#pragma once
#include "core/hostPort.h"
#include "platform/qtCanvas.h"
#include "platform/qtFonts.h"

#include <QImage>
#include <QMainWindow>
#include <functional>
#include <map>
#include <memory>
#include <vector>

struct PlayerState;
class QTimer;
class X11Hotkeys;
class QtBitmapStore;

// The central widget: the player's client area. Paint, presses and size go to the logic; the
// paint pass composes the whole window into the back buffer, which is then copied out.
class ScreenWidget : public QWidget {
  public:
    ScreenWidget(PlayerState& st, QWidget* parent);
    // The store whose bitmaps the canvas draws: the one installed as the player's bitmapStore.
    void setBitmaps(const QtBitmapStore* bitmaps) { bitmaps_ = bitmaps; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void composeFrame();

    PlayerState& st_;
    const QtBitmapStore* bitmaps_ = nullptr;
    FontCache fonts_;
    PaintCache paintCache_;
    QImage backBuffer_; // drawn by the pass
    QImage frame_;      // the last whole frame, what the widget shows
    bool inPass_ = false;
    bool missedPass_ = false;
};

// The player's main window. Closing it, by its frame or by a quit signal, shuts the player down
// once and ends the event loop with code 0.
class MainWindow : public QMainWindow {
  public:
    explicit MainWindow(PlayerState& st);
    ScreenWidget* screen() const { return screen_; }
    bool hasShutDown() const { return shutDown_; }
    // Until the start-up has run, a close only closes the box it waits on and is kept for later,
    // so the start-up never goes on over a shut-down player. True when a close is waiting.
    bool finishStartup();
    // Bare: no frame and no menu bar, the client area over the whole outer size; or framed again
    // in the same place. The flag is set on the native window, so the window is not made anew:
    // it keeps its place, its focus and the dialogs it owns.
    bool isBare() const { return bare_; }
    void setBare(bool bare);

  protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    PlayerState& st_;
    ScreenWidget* screen_;
    bool bare_ = false;
    QMargins framedMargins_; // the frame the window manager drew before the window went bare
    bool starting_ = true;
    bool closeWaiting_ = false;
    bool shutDown_ = false;
};

// The window system as the logic sees it: timers by id, repaint requests, message boxes, and the
// notice that the player changed.
class QtBackend : public host::Port {
  public:
    QtBackend(PlayerState& st, MainWindow& window);
    ~QtBackend() override;
    QtBackend(const QtBackend&) = delete;
    QtBackend& operator=(const QtBackend&) = delete;

    void setTimer(int id, int milliseconds) override;
    void killTimer(int id) override;
    void invalidate(const host::Rect* rect, bool erase) override;
    void messageBox(const std::string& text, const std::string& title, host::Icon icon,
                    bool owned) override;
    void playerChanged(host::PlayerChange what) override;
    void closeMainWindow() override;
    void openDialog(int id) override;
    bool keyIsDown(int vk) override;
    KeysDown keysDown() override;
    void registerHotkey(int id, int modifiers, std::uint32_t vk) override;
    void unregisterHotkey(int id) override;
    std::optional<std::string> pickFolder(const std::string& title) override;
    void openUrl(const std::string& address) override;
    bool isBorderless() override;
    void setBorderless(bool bare) override;
    void setOpacity(int alpha) override;
    // The screen and the desktop's media controls hear every change here instead of polling.
    void listenToPlayer(std::function<void(host::PlayerChange)> listener);

  private:
    PlayerState& st_;
    MainWindow& window_;
    std::map<int, std::unique_ptr<QTimer>> timers_;
    std::vector<std::function<void(host::PlayerChange)>> listeners_;
    host::Port* previous_;
    std::unique_ptr<X11Hotkeys> hotkeys_;
};

// The entry point of the player: returns the exit code, -1 when the window cannot be made.
int runPlayer(int argc, char** argv);
