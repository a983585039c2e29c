// paint-500x155 and paint-1500x465: one whole paint pass of the player screen with the Qt canvas
// into a back buffer like the window's, with the host's font and paint caches as every pass after
// the first finds them, on the offscreen platform: the front page with a headline
// long enough to shrink from its full size, the project's textures at the default alphas, three
// controller symbols, no audio. The pass runs every 250 ms and before every song change, on the
// thread that also answers the user. Median of 201 passes after 20 of warm-up; the list and
// ratio pages are shown beside it. argv[1] ends in the figure's name, which picks the size.
#include "benchSupport.h"
#include "core/playerState.h"
#include "core/windowEvents.h"
#include "display/layout.h"
#include "display/textures.h"
#include "platform/qtBitmaps.h"
#include "platform/qtCanvas.h"
#include "platform/qtFonts.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

constexpr int warmUp = 20;
constexpr int passes = 201;

void makeLibrary(PlayerState& st) {
    st.directoryPaths = {"/music"};
    Song song{"/music/Demo Album/a_rather_long_song_title.flac", 1, 12, 3, musicTypeMp3};
    st.playlists.push_back(Playlist{"Demo Album", {song}, 1});
    st.totalSongCount = st.playlistCount = 1;
    st.songTitle = "A Rather Long Song Title From The Demo Album, Played On The Radio";
    st.songFilePath = song.songPath;
    st.currentMusicType = musicTypeMp3;
    st.controllerCount = 3;
    for (int i = 0; i < 12; ++i)
        st.listEntries.push_back("Playlist number " + std::to_string(i));
}

// The project's own textures in the work folder, loaded as the start-up loads them.
bool loadTextures(PlayerState& st, const fs::path& folder) {
    const fs::path maker =
        fs::canonical("/proc/self/exe").parent_path().parent_path() / "makeTextures";
    const std::string command = maker.string() + " '" + (folder / "textures").string() + "'";
    if (std::system(command.c_str()) != 0)
        return false;
    fs::current_path(folder);
    scanTextures(st, "textures");
    return loadTexture(st, st.currentBkTextureName, backgroundSlot) == TextureLoad::Loaded &&
           loadTexture(st, st.currentLCDTextureName, lcdSlot) == TextureLoad::Loaded;
}

double medianPassMs(PlayerState& st, int width, int height, const QtBitmapStore& bitmaps) {
    onResize(st, width, height);
    QImage buffer(width, height, QImage::Format_RGB32);
    FontCache fonts;
    PaintCache cache;
    std::vector<double> ms;
    for (int i = 0; i < warmUp + passes; ++i) {
        double seconds = bench::secondsOf([&] {
            QPainter painter(&buffer);
            QtCanvas canvas(painter, width, height, fonts, &bitmaps, &cache);
            onPaint(st, canvas);
        });
        if (i >= warmUp)
            ms.push_back(seconds * 1000.0);
    }
    return bench::median(ms);
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    installFontSubstitutions();
    const fs::path folder = fs::absolute(argc > 1 ? argv[1] : "bench/work/paint-500x155");
    const std::string name = folder.filename().string();
    std::error_code error;
    fs::create_directories(folder, error);

    auto st = std::make_unique<PlayerState>();
    QtBitmapStore bitmaps;
    st->bitmapStore = &bitmaps;
    makeLibrary(*st);
    if (!loadTextures(*st, folder)) {
        std::fprintf(stderr, "%s: the textures could not be made or loaded\n", name.c_str());
        return 2;
    }
    const bool large = name == "paint-1500x465";
    const int width = large ? 1500 : 500;
    const int height = large ? 465 : 155;
    const std::string size = large ? "1500x465" : "500x155";

    bool ok =
        bench::printRow(name, medianPassMs(*st, width, height, bitmaps), "ms", large ? 12.0 : 3.0);
    st->listPage = 0;
    bench::printInfoRow("paint-list-" + size, medianPassMs(*st, width, height, bitmaps), "ms");
    st->listPage = -1;
    st->listKind = 1;
    bench::printInfoRow("paint-ratio-" + size, medianPassMs(*st, width, height, bitmaps), "ms");
    return ok ? 0 : 1;
}
