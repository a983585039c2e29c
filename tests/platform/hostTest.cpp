#include "core/playerState.h"
#include "platform/qtHost.h"
#include "platform/qtSignals.h"

#include <QApplication>
#include <QTimer>
#include <csignal>
#include <gtest/gtest.h>

namespace {

TEST(MainWindow, HasItsTitleAndAClientAreaOfFiveHundredByOneHundredFiftyFive) {
    PlayerState st;
    MainWindow window(st);
    window.show();
    EXPECT_EQ(window.windowTitle().toStdString(), "Marble Tunnel Radio");
    EXPECT_EQ(window.screen()->size(), QSize(500, 155));
    EXPECT_EQ(st.clientWidth, 500);
    EXPECT_EQ(st.clientHeight, 155);
    EXPECT_FLOAT_EQ(st.scaleX, 1.0f);
}

TEST(MainWindow, PaintsTheBackgroundColourOfTheSettings) {
    PlayerState st;
    st.bkGrR = 200;
    st.bkGrG = 10;
    st.bkGrB = 30;
    MainWindow window(st);
    window.show();
    QImage shot = window.screen()->grab().toImage();
    EXPECT_EQ(shot.pixelColor(2, 150), QColor(200, 10, 30));
}

TEST(MainWindow, ResizingRescalesTheGrid) {
    PlayerState st;
    MainWindow window(st);
    window.show();
    window.resize(1000, 310);
    QApplication::processEvents();
    EXPECT_EQ(st.clientWidth, 1000);
    EXPECT_FLOAT_EQ(st.scaleX, 2.0f);
    EXPECT_FLOAT_EQ(st.scaleY, 2.0f);
}

TEST(QtBackend, AMessageBoxWithoutADisplayBecomesOneLineInsteadOfBlocking) {
    PlayerState st;
    MainWindow window(st);
    QtBackend backend(st, window);
    testing::internal::CaptureStderr();
    host::messageBox("No soundfont files found.", "Error", host::Icon::Error, false);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: No soundfont files found.\n");
}

TEST(QuitSignals, CloseThePlayerThroughTheCloseBoxPathOnceAndEndTheLoopWithZero) {
    for (int signalNumber : {SIGTERM, SIGINT, SIGHUP}) {
        PlayerState st;
        MainWindow window(st);
        QtBackend backend(st, window);
        window.finishStartup();
        window.show();
        closeWindowOnQuitSignals(&window);
        QTimer::singleShot(0, [signalNumber] { std::raise(signalNumber); });
        QTimer::singleShot(5000, [] { QApplication::exit(99); }); // a safety net, not a check
        EXPECT_EQ(QApplication::exec(), 0) << "signal " << signalNumber;
        EXPECT_TRUE(window.hasShutDown());
        EXPECT_FALSE(window.isVisible());
    }
}

TEST(QuitSignals, DuringTheStartUpWaitUntilItHasRunAndThenCloseOnce) {
    PlayerState st;
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
