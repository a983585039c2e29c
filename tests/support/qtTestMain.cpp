#include "platform/qtFonts.h"

#include <QApplication>
#include <gtest/gtest.h>

// Qt widgets need their application object before the first test makes a window. The host's
// tests run on the offscreen platform, with or without a display, also for test discovery.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    installFontSubstitutions();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
