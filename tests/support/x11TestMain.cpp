#include <QGuiApplication>
#include <cstdio>
#include <gtest/gtest.h>

// The hotkeys' tests need a real X server: they run on the xcb platform of the display they are
// given (tests/e2e/underXvfb.sh starts one of their own), never offscreen.
int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        std::puts("skipped: no X display");
        return 77;
    }
    qputenv("QT_QPA_PLATFORM", "xcb");
    QGuiApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
