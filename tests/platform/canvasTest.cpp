#include "platform/qtBitmaps.h"
#include "platform/qtCanvas.h"
#include "platform/qtFonts.h"
#include "support/tempDir.h"

#include <QGlyphRun>
#include <QPainter>
#include <QRawFont>
#include <QTextLayout>
#include <cstdlib>
#include <gtest/gtest.h>

namespace {

// A white image with a canvas over it, and a bitmap store for its tiles.
struct Surface {
    QImage image{100, 60, QImage::Format_ARGB32_Premultiplied};
    FontCache fonts;
    QtBitmapStore bitmaps;
    PaintCache* cache = nullptr;
    Surface() { image.fill(Qt::white); }
    template <typename Draw> void draw(Draw draw, QPoint moved = {}) {
        QPainter painter(&image);
        painter.translate(moved);
        QtCanvas canvas(painter, image.width(), image.height(), fonts, &bitmaps, cache);
        draw(canvas);
    }
    // Within a few steps per channel, for anti-aliased edges.
    bool near(int x, int y, Color c) const {
        const QColor got = image.pixelColor(x, y);
        return std::abs(got.red() - c.r) < 12 && std::abs(got.green() - c.g) < 12 &&
               std::abs(got.blue() - c.b) < 12;
    }
};

constexpr Color red{255, 0, 0}, green{0, 255, 0}, blue{0, 0, 255}, yellow{255, 255, 0},
    white{255, 255, 255}, black{0, 0, 0};

TEST(CanvasFonts, ScreenSymbolsComeFromSymbolaAndArialFromLiberationSans) {
    struct Case {
        const char* family;
        char32_t codePoint;
        const char* from;
    };
    std::vector<Case> cases = {{"Segoe UI Symbol", 0x2661, "Symbola"},
                               {"Segoe UI Symbol", 0x2665, "Symbola"},
                               {"Arial", U'A', "Liberation Sans"}};
    for (char32_t c :
         {0x23EF,  0x23ED,  0x23EE, 0x1F500, 0x274C, 0x2191,  0x2193, 0x1F4FB, 0x1F3AE, 0x1F4F6,
          0x1F50A, 0x1F508, 0x26A1, 0x2190,  0x2192, 0x1F518, 0x26ED, 0x1F4A1, 0x1F509, 0x1F50D})
        cases.push_back({"Arial Unicode MS", c, "Symbola"});
    FontCache fonts;
    for (const Case& c : cases) {
        QTextLayout layout(QString::fromUcs4(&c.codePoint, 1), fonts.make({c.family, 20}).font);
        layout.beginLayout();
        layout.createLine();
        layout.endLayout();
        const QList<QGlyphRun> runs = layout.glyphRuns();
        ASSERT_EQ(runs.size(), 1) << std::hex << static_cast<unsigned>(c.codePoint);
        // Qt names a font reached through a substitution in lower case.
        EXPECT_EQ(runs[0].rawFont().familyName().toLower().toStdString(),
                  QString(c.from).toLower().toStdString())
            << std::hex << static_cast<unsigned>(c.codePoint);
        EXPECT_NE(runs[0].glyphIndexes().value(0), 0u)
            << std::hex << static_cast<unsigned>(c.codePoint);
    }
}

TEST(CanvasFonts, SizeIsTheCellHeightAndNeverBelowOnePixel) {
    FontCache fonts;
    for (const char* family : {"Arial", "Arial Unicode MS"})
        for (int size : {-3, 0, 1, 9, 13, 16, 27, 64}) {
            const MadeFont& made = fonts.make({family, size, 700});
            EXPECT_NEAR(made.metrics.ascent() + made.metrics.descent(), std::max(size, 1), 1)
                << family << " " << size;
            EXPECT_TRUE(made.font.bold());
        }
}

TEST(CanvasText, ValidUtf8IsKeptAndOtherBytesReadAsLatin1) {
    const std::pair<std::string, std::u16string> cases[] = {
        {"\xC3\xA9t\xC3\xA9", u"été"},
        {"caf\xE9", u"café"},
        {"\xF0\x9F\x94\x8A!", u"\U0001F50A!"},
        {"ok\xE2\x82", u"ok\u00E2\u0082"}, // cut short at the end
    };
    for (const auto& [bytes, text] : cases)
        EXPECT_EQ(decodeText(bytes), QString::fromStdU16String(text)) << bytes;
}

// A bitmap of four coloured quarters tiled over 12 x 12 (at 3, 2): the second tile of each row and
// column has 4 pixels of room, where Clip shows the bitmap's first quarter and Squeeze all of it.
TEST(CanvasTiles, LastTilesAreCutOrSqueezedAndAlphaZeroDrawsNothing) {
    TempDir dir;
    QImage quarters(8, 8, QImage::Format_RGB32);
    quarters.fill(Qt::red);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            if (x >= 4 || y >= 4)
                quarters.setPixelColor(x, y, x < 4 ? Qt::green : y < 4 ? Qt::blue : Qt::yellow);
    ASSERT_TRUE(quarters.save(QString::fromStdString(dir.str() + "/q.bmp"), "BMP"));
    struct Case {
        TileEdge edge;
        int x, y;
        Color expected;
    };
    const Case cases[] = {{TileEdge::Clip, 11, 0, red},       {TileEdge::Clip, 0, 11, red},
                          {TileEdge::Clip, 11, 11, red},      {TileEdge::Clip, 7, 7, yellow},
                          {TileEdge::Squeeze, 9, 0, red},     {TileEdge::Squeeze, 11, 0, blue},
                          {TileEdge::Squeeze, 0, 11, green},  {TileEdge::Squeeze, 11, 11, yellow},
                          {TileEdge::Squeeze, 12, 12, white}, {TileEdge::Clip, 12, 5, white}};
    for (const Case& c : cases) {
        Surface s;
        const int id = s.bitmaps.load(dir.str() + "/q.bmp").value().id;
        s.draw([&](Canvas& canvas) {
            canvas.tileBitmap(id, {3, 2, 12, 12}, 255, c.edge);
            canvas.tileBitmap(id, {50, 0, 12, 12}, 0, c.edge);
            canvas.tileBitmap(id + 1, {70, 0, 12, 12}, 255, c.edge);
        });
        EXPECT_TRUE(s.near(3 + c.x, 2 + c.y, c.expected)) << c.x << "," << c.y;
        EXPECT_TRUE(s.near(50, 0, white) && s.near(70, 0, white));
    }
}

TEST(CanvasShapes, FillsOutlinesAndRoundedClipLandOnTheirPixels) {
    Surface s;
    s.draw([](Canvas& canvas) {
        canvas.roundedRect({10, 10, 40, 30}, 20, {green, blue, 2});
        canvas.ellipse({60, 10, 30, 30}, {red, blue, 2});
        canvas.outlineRect({0, 45, 10, 10}, black, 2);
        canvas.clipRounded({80, 42, 16, 16}, 16);
        canvas.fillRect({0, 0, 100, 60}, yellow);
        canvas.clearClip();
    });
    const std::tuple<int, int, Color> pixels[] = {
        {30, 25, green}, {30, 10, blue},   {5, 10, white}, {10, 10, white}, {75, 25, red},
        {75, 10, blue},  {60, 10, white},  {0, 45, black}, {1, 54, black},  {2, 47, white},
        {10, 55, white}, {88, 50, yellow}, {80, 42, white}};
    for (const auto& [x, y, color] : pixels)
        EXPECT_TRUE(s.near(x, y, color)) << x << "," << y;
}

// Laid from the cache, a frame is the frame drawn in place but for rounding, at its first pass,
// at the next, moved by whole pixels, and with a text that changed in between.
TEST(PaintCache, FramesLaidFromItAreFramesDrawnInPlace) {
    TempDir dir;
    QImage stripes(6, 5, QImage::Format_RGB32);
    for (int x = 0; x < stripes.width(); ++x)
        for (int y = 0; y < stripes.height(); ++y)
            stripes.setPixelColor(x, y, x % 3 ? QColor(200, 40, 90) : QColor(20, 160, 60));
    ASSERT_TRUE(stripes.save(QString::fromStdString(dir.str() + "/s.bmp"), "BMP"));
    const auto frame = [](const std::string& clock, int texture) {
        return [clock, texture](Canvas& canvas) {
            canvas.tileBitmap(texture, {0, 0, 100, 60}, 90, TileEdge::Clip);
            canvas.roundedRect({10, 10, 40, 30}, 20, {green, blue, 2});
            canvas.ellipse({60, 10, 30, 30}, {red, blue, 2});
            canvas.drawText({5, 2, 90, 20}, "Headline",
                            {{"Arial", 14, boldWeight}, black, TextAlign::Center, true, false});
            canvas.drawText({5, 30, 90, 28}, "Time: " + clock + ", and the words wrap",
                            {{"Arial", 10}, blue, TextAlign::Left, false, true});
        };
    };
    PaintCache cache;
    Surface inPlace, laid;
    laid.cache = &cache;
    const int inPlaceTexture = inPlace.bitmaps.load(dir.str() + "/s.bmp").value().id;
    const int laidTexture = laid.bitmaps.load(dir.str() + "/s.bmp").value().id;
    for (const auto& [clock, moved] : {std::pair("00:01", QPoint()),
                                       {"00:01", QPoint()},
                                       {"00:01", QPoint(3, -2)},
                                       {"00:02", QPoint()}}) {
        inPlace.image.fill(Qt::white);
        laid.image.fill(Qt::white);
        inPlace.draw(frame(clock, inPlaceTexture), moved);
        laid.draw(frame(clock, laidTexture), moved);
        int most = 0;
        for (int y = 0; y < laid.image.height(); ++y)
            for (int x = 0; x < laid.image.width(); ++x) {
                const QColor a = laid.image.pixelColor(x, y), b = inPlace.image.pixelColor(x, y);
                most = std::max({most, std::abs(a.red() - b.red()), std::abs(a.green() - b.green()),
                                 std::abs(a.blue() - b.blue())});
            }
        EXPECT_LE(most, 2) << clock << " moved " << moved.x();
    }
}

// A PNG named ".bmp", a cut bitmap and a folder are refused by the texture scan's test.
TEST(QtBitmapStore, LoadsOnlyBitmapsOfASizeItCanHold) {
    TempDir dir;
    QImage image(7, 3, QImage::Format_RGB32);
    image.fill(Qt::blue);
    ASSERT_TRUE(image.save(QString::fromStdString(dir.str() + "/real.bmp"), "BMP"));
    // 40000 x 40000 at 24 bits a pixel, and no pixels.
    std::string giant = "BM" + std::string(12, '\0') + std::string("\x28\0\0\0", 4) +
                        std::string("\x40\x9C\0\0\x40\x9C\0\0\x01\0\x18\0", 12) +
                        std::string(24, '\0');
    giant[10] = 54;
    dir.write("giant.bmp", giant);

    QtBitmapStore store;
    for (const char* name : {"giant.bmp", "missing.bmp"})
        EXPECT_FALSE(store.load(dir.str() + "/" + name)) << name;
    ASSERT_EQ(TempDir::read(dir.path() / "real.bmp")[28], 24);
    const auto real = store.load(dir.str() + "/real.bmp");
    ASSERT_TRUE(real);
    EXPECT_EQ(std::pair(real->width, real->height), std::pair(7, 3));
    EXPECT_EQ(store.find(real->id)->pixelColor(6, 2), QColor(Qt::blue));
}

} // namespace
