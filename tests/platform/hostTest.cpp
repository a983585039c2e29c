#include "core/playerState.h"
#include "core/windowEvents.h"
#include "input/actionSteps.h"
#include "platform/menus.h"
#include "platform/qtHost.h"
#include "platform/qtSignals.h"
#include "platform/x11Hotkeys.h"
#include "support/output.h"
#include "support/tempDir.h"

#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <csignal>
#include <gtest/gtest.h>
#include <optional>
#include <tuple>

namespace {

// The window and its backend over a player that saves every file into a folder of the test's.
struct Host {
    TempDir dir;
    PlayerState st;
    MainWindow window{st};
    QtBackend backend{st, window};
    Host() {
        st.dataDirectory = dir.str();
        st.libraryCachePath = dir.str() + "/musicLibraryCache.json";
    }
};

TEST(MainWindow, HasItsTitleAndItsClientAreaAndAResizeRescalesTheGrid) {
    PlayerState st;
    std::tie(st.bkGrR, st.bkGrG, st.bkGrB) = std::tuple(200, 10, 30);
    MainWindow window(st);
    window.show();
    EXPECT_EQ(window.windowTitle().toStdString(), "Marble Tunnel Radio");
    EXPECT_EQ(window.screen()->size(), QSize(500, 155));
    EXPECT_EQ(std::tie(st.clientWidth, st.scaleX), std::tuple(500, 1.0f));
    // Painted in the background colour of the settings.
    EXPECT_EQ(window.screen()->grab().toImage().pixelColor(2, 150), QColor(200, 10, 30));

    window.resize(1000, 310);
    QApplication::processEvents();
    EXPECT_EQ(std::tie(st.clientWidth, st.scaleX, st.scaleY), std::tuple(1000, 2.0f, 2.0f));
}

// The repaint tick, fired as its timer would, asks the window for a paint through the host port;
// a message box without a display becomes one line instead of blocking.
TEST(QtBackend, TheRepaintTickRepaintsTheWindowAndABoxWithoutADisplayIsALine) {
    Host host;
    host.window.show();
    QApplication::processEvents();
    host.st.paintedSinceTick = false;
    host.st.buttonsDirty = true; // the whole client area
    onTimer(host.st, host::timerRepaint);
    QApplication::processEvents(); // delivers the paint that was asked for
    EXPECT_TRUE(host.st.paintedSinceTick);
    EXPECT_EQ(errorsOf([] {
                  host::messageBox("No soundfont files found.", "Error", host::Icon::Error, false);
              }),
              "Error: No soundfont files found.\n");
}

// Off X (offscreen here, Wayland for a user) one line says so, and a registration does nothing.
// On a real X server the grabs are x11Tests' business.
TEST(X11Hotkeys, OffAnXServerSayOnceThatTheyAreOffAndReadNoKeyAsDown) {
    PlayerState st;
    std::optional<X11Hotkeys> hotkeys;
    EXPECT_EQ(logOf([&] { hotkeys.emplace(st); }),
              "Global hotkeys are off: the window system is not X11.\n");
    hotkeys->registerHotkey(action::volumeUp, 3, 'N');
    EXPECT_FALSE(hotkeys->keyIsDown(vkControl));
}

// Every quit signal closing the real program through the close box's path, with its exit code
// and the files it saves, is checked by tests/e2e/startAndStop.sh. The handler has written its
// byte before raise returns, so one turn of the loop reads it.
TEST(QuitSignals, DuringTheStartUpWaitUntilItHasRunAndThenCloseOnce) {
    Host host;
    closeWindowOnQuitSignals(&host.window);
    std::raise(SIGTERM);
    QApplication::processEvents(); // a box of the start-up turns the loop like this
    EXPECT_FALSE(host.window.hasShutDown());
    EXPECT_TRUE(host.window.finishStartup());
    host.window.close();
    EXPECT_TRUE(host.window.hasShutDown());
}

} // namespace

namespace {

TEST(Menus, HoldEveryCommandInOrderTakeTheirHeightFromTheClientAreaAndOpenADialogEachTime) {
    Host host;
    host.window.resize(500, 155);
    createMenus(host.window, host.st);
    host.window.show();
    QApplication::processEvents();
    std::vector<std::string> seen;
    for (QAction* menu : host.window.menuBar()->actions()) {
        seen.push_back("[" + menu->text().toStdString() + "]");
        for (QAction* entry : menu->menu()->actions())
            seen.push_back(entry->text().toStdString());
    }
    const std::vector<std::string> expected{"[File]",
                                            "Select Local Folders",
                                            "Select Internet URL",
                                            "Exit",
                                            "[Playback]",
                                            "Play/Pause",
                                            "Start",
                                            "Stop",
                                            "Next Song",
                                            "Previous Song",
                                            "Next Sound Font",
                                            "Previous Sound Font",
                                            "Next Play List",
                                            "Previous Play List",
                                            "[Settings]",
                                            "Radio",
                                            "Favorites",
                                            "Hotkeys \\ Game Controllers",
                                            "Display",
                                            "[Song Info]",
                                            "View",
                                            "[Marble Tunnel]",
                                            "Play Marble Tunnel ",
                                            "Merge Favorites",
                                            "Sync Music Library",
                                            "[About]",
                                            "About Marble Tunnel Radio",
                                            "[Update]",
                                            "Check For Updates"};
    EXPECT_EQ(seen, expected);

    EXPECT_EQ(host.window.height(), 155);
    EXPECT_LT(host.st.clientHeight, 155);
    EXPECT_LT(host.st.scaleY, 1.0f);

    // Each dialog entry opens one more window, in front of the player and owned by it; the
    // radio options keep their size.
    QMenu* settings = host.window.menuBar()->actions()[2]->menu();
    settings->actions()[3]->trigger();
    settings->actions()[3]->trigger();
    settings->actions()[0]->trigger();
    auto dialogs = [&] {
        std::vector<QWidget*> windows;
        for (QWidget* child : host.window.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            if (child->isWindow())
                windows.push_back(child);
        return windows;
    };
    std::vector<QWidget*> windows = dialogs();
    ASSERT_EQ(windows.size(), 3u);
    EXPECT_EQ(windows[1]->windowTitle(), "Visual Options");
    EXPECT_EQ(windows[0]->size(), QSize(604, 451)); // 620 by 490 outside a Windows frame
    EXPECT_TRUE(windows[0]->isVisible());
    EXPECT_EQ(windows[2]->windowTitle(), "Radio Option");
    EXPECT_EQ(windows[2]->minimumSize(), windows[2]->maximumSize());
    windows[0]->close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(dialogs().size(), 2u);
}

} // namespace
