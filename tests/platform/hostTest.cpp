#include "core/playerState.h"
#include "core/windowEvents.h"
#include "platform/qtHost.h"
#include "platform/qtSignals.h"
#include "support/output.h"
#include "support/tempDir.h"

#include <QApplication>
#include <csignal>
#include <gtest/gtest.h>

namespace {

TEST(MainWindow, HasItsTitleAndItsClientAreaAndAResizeRescalesTheGrid) {
    PlayerState st;
    st.bkGrR = 200;
    st.bkGrG = 10;
    st.bkGrB = 30;
    MainWindow window(st);
    window.show();
    EXPECT_EQ(window.windowTitle().toStdString(), "Marble Tunnel Radio");
    EXPECT_EQ(window.screen()->size(), QSize(500, 155));
    EXPECT_EQ(st.clientWidth, 500);
    EXPECT_FLOAT_EQ(st.scaleX, 1.0f);
    // Painted in the background colour of the settings.
    EXPECT_EQ(window.screen()->grab().toImage().pixelColor(2, 150), QColor(200, 10, 30));

    window.resize(1000, 310);
    QApplication::processEvents();
    EXPECT_EQ(st.clientWidth, 1000);
    EXPECT_FLOAT_EQ(st.scaleX, 2.0f);
    EXPECT_FLOAT_EQ(st.scaleY, 2.0f);
}

// The repaint tick, fired as its timer would, asks the window for a paint through the host port.
TEST(QtBackend, TheRepaintTickRepaintsTheWindow) {
    PlayerState st;
    MainWindow window(st);
    QtBackend backend(st, window);
    window.show();
    QApplication::processEvents();
    st.paintedSinceTick = false;
    st.buttonsDirty = true; // the whole client area
    onTimer(st, host::timerRepaint);
    QApplication::processEvents(); // delivers the paint that was asked for
    EXPECT_TRUE(st.paintedSinceTick);
}

TEST(QtBackend, AMessageBoxWithoutADisplayBecomesOneLineInsteadOfBlocking) {
    PlayerState st;
    MainWindow window(st);
    QtBackend backend(st, window);
    EXPECT_EQ(errorsOf([] {
                  host::messageBox("No soundfont files found.", "Error", host::Icon::Error, false);
              }),
              "Error: No soundfont files found.\n");
}

// The handler has written its byte before raise returns, so one turn of the loop reads it. The
// exit code of the loop is checked on the real program (tests/e2e/startAndStop.sh).
TEST(QuitSignals, CloseThePlayerThroughTheCloseBoxPathOnce) {
    for (int signalNumber : {SIGTERM, SIGINT, SIGHUP}) {
        TempDir dir;
        PlayerState st;
        st.dataDirectory = dir.str(); // where the shutdown saves
        MainWindow window(st);
        QtBackend backend(st, window);
        window.finishStartup();
        window.show();
        closeWindowOnQuitSignals(&window);
        std::raise(signalNumber);
        QApplication::processEvents();
        EXPECT_TRUE(window.hasShutDown()) << "signal " << signalNumber;
        EXPECT_FALSE(window.isVisible());
        EXPECT_FALSE(TempDir::read(dir.path() / "MusicSettings.json").empty());
    }
}

TEST(QuitSignals, DuringTheStartUpWaitUntilItHasRunAndThenCloseOnce) {
    TempDir dir;
    PlayerState st;
    st.dataDirectory = dir.str();
    MainWindow window(st);
    QtBackend backend(st, window);
    closeWindowOnQuitSignals(&window);
    std::raise(SIGTERM);
    QApplication::processEvents(); // a box of the start-up turns the loop like this
    EXPECT_FALSE(window.hasShutDown());
    EXPECT_TRUE(window.finishStartup());
    window.close();
    EXPECT_TRUE(window.hasShutDown());
}

} // namespace
