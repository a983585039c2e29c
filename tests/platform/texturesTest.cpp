#include "display/textures.h"

#include "display/displayState.h"
#include "media/process.h"
#include "platform/qtBitmaps.h"
#include "support/currentDirectory.h"
#include "support/tempDir.h"

#include <QImage>
#include <gtest/gtest.h>

namespace {

// In the order of the scan: by name, byte for byte, so capitals first.
const std::vector<std::string> madeNames = {"Brushed Steel", "CarbonFiber", "LCD",    "Leather",
                                            "Marble",        "Walnut",      "cement", "wood"};

bool makeTextures(const std::filesystem::path& folder) {
    return media::runProgram({MAKE_TEXTURES_PATH, folder.string()}).ok;
}

int difference(QRgb a, QRgb b) {
    return std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) +
           std::abs(qBlue(a) - qBlue(b));
}

// How much the pixels change across the wrap from the last column to the first, against the
// mean change between neighbouring columns inside; transposed, the same for rows.
double wrapRatio(const QImage& image, bool columns) {
    const int n = image.width();
    auto at = [&](int along, int across) {
        return columns ? image.pixel(across, along) : image.pixel(along, across);
    };
    double inner = 0.0;
    double wrap = 0.0;
    for (int along = 0; along < n; ++along) {
        for (int across = 0; across + 1 < n; ++across)
            inner += difference(at(along, across), at(along, across + 1));
        wrap += difference(at(along, n - 1), at(along, 0));
    }
    return (wrap / n) / (inner / (static_cast<double>(n) * (n - 1)));
}

std::vector<std::string> namesOf(const DisplayState& st) {
    std::vector<std::string> names;
    for (const TextureInfo& info : st.textures)
        names.push_back(info.name);
    return names;
}

// A data folder whose textures are the made ones; the test is in it while the object lives.
struct DataFolder {
    TempDir dir;
    QtBitmapStore store;
    DisplayState st;
    std::optional<ScopedCurrentDirectory> inside;
    explicit DataFolder(bool withTextures) {
        if (withTextures) {
            EXPECT_TRUE(makeTextures(dir.path() / "textures"));
        }
        inside.emplace(dir.path());
        st.bitmapStore = &store;
    }
};

} // namespace

TEST(TextureMaker, WritesTheSameSeamlessSquareBitmapsOnEveryRun) {
    TempDir dir;
    ASSERT_TRUE(makeTextures(dir.path() / "a") && makeTextures(dir.path() / "b"));
    QtBitmapStore store;
    for (const std::string& name : madeNames) {
        const std::string file = name + ".bmp";
        EXPECT_EQ(TempDir::read(dir.path() / "a" / file), TempDir::read(dir.path() / "b" / file));
        std::optional<BitmapInfo> bitmap = store.load((dir.path() / "a" / file).string());
        ASSERT_TRUE(bitmap) << name;
        EXPECT_TRUE(bitmap->width == bitmap->height && bitmap->width % 256 == 0) << name;
        EXPECT_LE(wrapRatio(*store.find(bitmap->id), true), 1.5) << name << " across x";
        EXPECT_LE(wrapRatio(*store.find(bitmap->id), false), 1.5) << name << " across y";
    }
}

TEST(TextureScan, ListsTheBitmapsByNameAndSkipsWhatIsNoBitmapWithoutABox) {
    DataFolder data(true);
    QImage png(8, 8, QImage::Format_RGB32);
    png.fill(Qt::darkRed);
    png.save("textures/png.bmp", "PNG");
    const std::string leather = TempDir::read("textures/Leather.bmp");
    data.dir.write("textures/cut.bmp", leather.substr(0, leather.size() / 2));
    data.dir.mkdir("textures/folder.bmp");
    data.dir.write("textures/notes.txt", "bitmaps");

    EXPECT_EQ(loadStartupTextures(data.st), std::vector<std::string>{});
    EXPECT_EQ(namesOf(data.st), madeNames);
    EXPECT_EQ(data.st.textures[4].width, 512); // Marble
    // The names of the start-up textures replace the defaults.
    EXPECT_EQ(data.st.currentBkTextureName, "Leather");
    EXPECT_EQ(data.st.currentLCDTextureName, "LCD");
    EXPECT_NE(data.store.find(data.st.textureSlots[backgroundSlot].id), nullptr);
    EXPECT_EQ(data.st.textureSlots[lcdSlot].width, 256);
}

TEST(TextureLoad, ANameOfOtherCapitalsIsNotListedAndADeletedFileFailsKeepingTheName) {
    DataFolder data(true);
    loadStartupTextures(data.st);
    const int leatherId = data.st.textureSlots[backgroundSlot].id;

    EXPECT_EQ(loadTexture(data.st, "leather", backgroundSlot), TextureLoad::NotListed);
    EXPECT_EQ(data.st.textureSlots[backgroundSlot].id, 0);
    EXPECT_EQ(data.store.find(leatherId), nullptr); // released, not leaked
    EXPECT_EQ(loadTexture(data.st, "Walnut", backgroundSlot), TextureLoad::Loaded);
    EXPECT_EQ(data.st.currentBkTextureName, "Walnut");
    EXPECT_EQ(loadTexture(data.st, "Leather", backgroundSlot), TextureLoad::Loaded);
    EXPECT_EQ(data.st.currentBkTextureName, "Leather");

    std::filesystem::remove("textures/Marble.bmp");
    EXPECT_EQ(loadTexture(data.st, "Marble", lcdSlot), TextureLoad::Failed);
    EXPECT_EQ(data.st.currentLCDTextureName, "LCD");
    data.st.currentBkTextureName = "Marble"; // as the settings file names it
    EXPECT_EQ(loadNamedTextures(data.st), std::vector<std::string>{"Failed to load Marble.bmp"});
    EXPECT_EQ(data.st.currentBkTextureName, "Marble");
    EXPECT_EQ(data.st.textureSlots[backgroundSlot].id, 0);

    const int lcdId = data.st.textureSlots[lcdSlot].id;
    releaseTextures(data.st);
    EXPECT_EQ(data.store.find(lcdId), nullptr);
    EXPECT_EQ(data.st.textureSlots[lcdSlot].id, 0);
}

TEST(TextureLoad, WithoutATexturesFolderTheSlotsStayEmptyAndNothingFails) {
    DataFolder data(false);
    EXPECT_EQ(loadStartupTextures(data.st), std::vector<std::string>{});
    EXPECT_EQ(loadNamedTextures(data.st), std::vector<std::string>{});
    EXPECT_TRUE(data.st.textures.empty());
    EXPECT_EQ(data.st.textureSlots[backgroundSlot].id + data.st.textureSlots[lcdSlot].id, 0);
    EXPECT_EQ(std::tie(data.st.currentBkTextureName, data.st.currentLCDTextureName),
              std::tuple("wood", "cement"));
}
