// One key of the type-ahead search on a large library: 100,000 songs in 1,000 playlists, paths
// of about 90 bytes. The key runs on the 30 ms tick of the window's thread, so it must stay well
// under a frame; opening the page, which lower-cases the library once, is shown beside it.
#include "benchSupport.h"
#include "core/playerState.h"
#include "display/pages.h"
#include "input/search.h"

#include <random>
#include <string>
#include <vector>

namespace {

constexpr int playlistTotal = 1000;
constexpr int songsPerPlaylist = 100;
constexpr int runs = 9;

void buildLibrary(PlayerState& st, std::mt19937& rng) {
    const char* words[] = {"Morning", "river",   "Electric", "dance", "Quiet",  "storm",
                           "golden",  "Harbour", "night",    "Train", "silver", "echo"};
    std::uniform_int_distribution<int> word(0, 11);
    for (int p = 0; p < playlistTotal; ++p) {
        Playlist playlist;
        playlist.albumName = "Collection " + std::to_string(p);
        const std::string folder = "/home/listener/Music/Marble Tunnel Library/Collection " +
                                   std::to_string(p) + " " + words[word(rng)] + "/";
        for (int s = 0; s < songsPerPlaylist; ++s) {
            Song song;
            song.songPath = folder + std::to_string(s) + "_" + words[word(rng)] + "_" +
                            words[word(rng)] + "_" + words[word(rng)] + ".mp3";
            playlist.songs.push_back(std::move(song));
        }
        playlist.songCount = songsPerPlaylist;
        st.playlists.push_back(std::move(playlist));
    }
}

} // namespace

int main() {
    std::mt19937 rng(2024);
    PlayerState st;
    buildLibrary(st, rng);

    std::vector<double> opens;
    std::vector<double> keys;
    const std::string typed = "RIV";
    for (int run = 0; run < runs; ++run) {
        if (st.searchActive)
            toggleSearchPage(st);
        opens.push_back(bench::secondsOf([&] { toggleSearchPage(st); }) * 1000.0);
        for (char c : typed) {
            KeysDown down;
            pollSearchKeys(st, down); // every key up
            down[static_cast<unsigned char>(c)] = true;
            keys.push_back(bench::secondsOf([&] { pollSearchKeys(st, down); }) * 1000.0);
        }
    }
    const bool ok = bench::printRow("search-100k", bench::median(keys), "ms", 10.0);
    bench::printInfoRow("search-open-100k", bench::median(opens), "ms");
    return ok ? 0 : 1;
}
