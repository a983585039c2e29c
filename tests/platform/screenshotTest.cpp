#include "core/playerState.h"
#include "display/layout.h"
#include "platform/qtHost.h"
#include "support/oneSongPlayer.h"

#include <QApplication>
#include <QDir>
#include <gtest/gtest.h>
#include <string>
#include <tuple>

namespace {

// Three colours no default shares, so that no check passes on a colour left over.
const QColor text(250, 200, 40), back(30, 60, 140), lcd(20, 140, 70);

// A player of one song with the colours above and no LCD texture.
void setUpPlayer(PlayerState& st) {
    setUpOneSong(st);
    st.volume = 0.3f;
    st.textureAlpha = 0;
    std::tie(st.textR, st.textG, st.textB) = std::tuple(text.red(), text.green(), text.blue());
    std::tie(st.bkGrR, st.bkGrG, st.bkGrB) = std::tuple(back.red(), back.green(), back.blue());
    std::tie(st.songR, st.songG, st.songB) = std::tuple(lcd.red(), lcd.green(), lcd.blue());
}

// "#rrggbb", so that a failure names the colours.
std::string colorAt(const QImage& image, int x, int y) {
    return image.pixelColor(x, y).name().toStdString();
}
std::string nameOf(const QColor& color) {
    return color.name().toStdString();
}

// Pixels of exactly the colour in a grid box: the solid middles of glyph strokes.
int countInBox(const QImage& image, const PlayerState& st, Box grid, const QColor& color) {
    const Box box = gridBox(st, grid.x, grid.y, grid.width, grid.height);
    int n = 0;
    for (int y = box.y; y < box.y + box.height; ++y)
        for (int x = box.x; x < box.x + box.width; ++x)
            n += image.pixelColor(x, y) == color;
    return n;
}

// The real window's whole frame at each client size, saved for a person to look at and checked
// by its colours where the front page puts them.
TEST(Screenshots, FrontPageShowsItsColoursAndTheVolumeAtEverySize) {
    QDir().mkpath(SCREENSHOT_DIR);
    for (QSize size : {QSize(500, 155), QSize(1000, 310), QSize(500, 320)}) {
        const std::string name = std::to_string(size.width()) + "x" + std::to_string(size.height());
        SCOPED_TRACE(name);
        PlayerState st;
        setUpPlayer(st);
        MainWindow window(st);
        window.resize(size);
        window.show();
        QApplication::processEvents();
        ASSERT_EQ(window.screen()->size(), size);
        const QImage image = window.screen()->grab().toImage();
        EXPECT_TRUE(image.save(QString(SCREENSHOT_DIR) + "/screen-" + name.c_str() + ".png"));

        // Left of the headline, below the path line and above the heart.
        EXPECT_EQ(colorAt(image, gridX(st, 20), gridY(st, 45)), nameOf(lcd));
        EXPECT_EQ(colorAt(image, 2, size.height() - 2), nameOf(back));
        // The volume bar: the LCD colour up to 30% of its height, the text colour over it.
        const Box bar = st.volumeBarRect;
        EXPECT_EQ(bar, gridBox(st, 493, 2, 6, 95));
        const auto barAt = [&](float fraction) {
            return colorAt(image, bar.x + bar.width / 2,
                           bar.y + bar.height - static_cast<int>(bar.height * fraction));
        };
        EXPECT_EQ(barAt(0.25f), nameOf(lcd));
        EXPECT_EQ(barAt(0.35f), nameOf(text));
        // The title inside the box's outline, clear of the frequency at its left.
        EXPECT_EQ(countInBox(image, st, {150, 110, 180, 20}, back), 0);
        EXPECT_GT(countInBox(image, st, {150, 110, 180, 20}, text), 20);
        EXPECT_GT(countInBox(image, st, {150, 110, 180, 20}, lcd), 200);
    }
}

} // namespace
