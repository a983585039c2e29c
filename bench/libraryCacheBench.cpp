// The library cache of a large library: 100,000 songs in 1,000 playlists. Loading it is the
// start-up's first long step, saving it the exit's; what the loaded library keeps in memory
// stays for the whole run. argv[1] ends in the figure's name, which picks the figure.
#include "benchSupport.h"
#include "core/libraryEdits.h"
#include "core/playerState.h"
#include "library/cache.h"

#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <string>

namespace {

constexpr int playlistTotal = 1000;
constexpr int songsPerPlaylist = 100;
constexpr int runs = 7;

// Paths of the length a real collection has: "/home/…/Music/Artist - Album/07 - Title.ext".
std::vector<Playlist> makeLibrary() {
    const char* extensions[] = {".mid", ".mp3", ".xm"};
    std::vector<Playlist> playlists;
    for (int p = 0; p < playlistTotal; ++p) {
        Playlist playlist;
        playlist.albumName =
            "Artist " + std::to_string(p % 97) + " - Album Title " + std::to_string(p);
        for (int s = 0; s < songsPerPlaylist; ++s) {
            Song song;
            song.musicType = (p + s) % 3;
            song.songPath = "/home/listener/Music/" + playlist.albumName + "/" +
                            std::to_string(s + 1) + " - A Song Title Of Some Length " +
                            std::to_string(p * songsPerPlaylist + s) + extensions[song.musicType];
            song.playCount = (p * 7 + s) % 40;
            song.isFavorite = s % 10 == 0;
            song.favoriteCount = song.isFavorite ? 1 + s % 3 : 0;
            playlist.songs.push_back(std::move(song));
        }
        playlist.songCount = songsPerPlaylist;
        playlist.iRadioMode = p % 50 == 0;
        playlists.push_back(std::move(playlist));
    }
    return playlists;
}

// Resident and peak resident memory in MiB, from the kernel's own account.
double statusMiB(const char* key) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind(key, 0) == 0)
            return std::stod(line.substr(std::string(key).size())) / 1024.0;
    return 0.0;
}

void resetPeak() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

} // namespace

int main(int, char** argv) {
    const std::string figure = std::filesystem::path(argv[1]).filename().string();
    std::filesystem::create_directories(argv[1]);
    PlayerState st;
    st.dataDirectory = argv[1];
    st.libraryCachePath = std::string(argv[1]) + "/musicLibraryCache.json";
    {
        PlayerState writer;
        writer.dataDirectory = st.dataDirectory;
        writer.libraryCachePath = st.libraryCachePath;
        writer.playlists = makeLibrary();
        saveLibraryCache(writer);
    }
    malloc_trim(0);

    if (figure == "library-mem-100k") {
        resetPeak();
        double before = statusMiB("VmRSS:");
        st.playlists = loadLibraryCache(st); // the parsed document is gone when this returns
        malloc_trim(0);
        double kept = statusMiB("VmRSS:") - before;
        double peak = statusMiB("VmHWM:") - before;
        bench::printInfoRow("library-mem-100k-peak", peak, "MiB");
        return bench::printRow(figure, kept, "MiB", 60) ? 0 : 1;
    }

    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        if (figure == "cache-save-100k") {
            if (st.playlists.empty())
                st.playlists = loadLibraryCache(st);
            times.push_back(bench::secondsOf([&] { saveLibraryCache(st); }) * 1000.0);
        } else {
            st.playlists.clear();
            times.push_back(bench::secondsOf([&] { st.playlists = loadLibraryCache(st); }) *
                            1000.0);
        }
    }
    double target = figure == "cache-save-100k" ? 600 : 400;
    return bench::printRow(figure, bench::median(times), "ms", target) ? 0 : 1;
}
