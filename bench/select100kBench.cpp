// The next song of a large library: 100,000 songs in 1,000 playlists, a tenth of them favourites,
// 10,000 rows of history. The choice runs inside a repaint, so it must stay well under a frame.
#include "benchSupport.h"
#include "core/playerState.h"
#include "library/model.h"
#include "radio/selection.h"

#include <random>
#include <string>
#include <vector>

namespace {

constexpr int playlistTotal = 1000;
constexpr int songsPerPlaylist = 100;
constexpr int historyRows = 10000;
constexpr int callsPerRun = 200;
constexpr int runs = 7;

void buildLibrary(PlayerState& st, std::mt19937& rng) {
    const char* extensions[] = {".mid", ".mp3", ".xm"};
    std::uniform_int_distribution<int> favouriteCount(1, 3);
    for (int p = 0; p < playlistTotal; ++p) {
        Playlist playlist;
        playlist.albumName = "Album " + std::to_string(p);
        for (int s = 0; s < songsPerPlaylist; ++s) {
            Song song;
            song.musicType = (p + s) % 3;
            song.songPath = "/music/Album " + std::to_string(p) + "/song " + std::to_string(s) +
                            extensions[song.musicType];
            if ((p * songsPerPlaylist + s) % 10 == 0) {
                song.isFavorite = 1;
                song.favoriteCount = favouriteCount(rng);
            }
            playlist.songs.push_back(std::move(song));
        }
        playlist.songCount = songsPerPlaylist;
        st.playlists.push_back(std::move(playlist));
    }
    recountLibrary(st);
    st.scanPlaylistCount = playlistTotal;
    st.scanSongCount = playlistTotal * songsPerPlaylist;
}

void fillHistory(PlayerState& st, std::mt19937& rng) {
    std::uniform_int_distribution<int> playlist(0, playlistTotal - 1);
    std::uniform_int_distribution<int> song(0, songsPerPlaylist - 1);
    for (int i = 0; i < historyRows; ++i) {
        int p = playlist(rng);
        int s = song(rng);
        appendHistory(st, st.playlists[p].songs[s].musicType, s, p);
    }
}

// Every call starts from the same 10,000 rows, so no run sees a longer history than another.
void restoreHistory(PlayerState& st) {
    st.songHistory.resize(historyRows);
    st.historyEnd = historyRows;
    st.historyPosition = historyRows - 1;
}

// Median over the runs of the mean time of one call, in milliseconds.
double medianCallMs(PlayerState& st) {
    for (int i = 0; i < 20; ++i) {
        selectNextSong(st);
        restoreHistory(st);
    }
    std::vector<double> perRun;
    for (int run = 0; run < runs; ++run) {
        double seconds = 0.0;
        for (int i = 0; i < callsPerRun; ++i) {
            seconds += bench::secondsOf([&] { selectNextSong(st); });
            restoreHistory(st);
        }
        perRun.push_back(seconds * 1000.0 / callsPerRun);
    }
    return bench::median(perRun);
}

} // namespace

int main() {
    std::mt19937 rng(2024);
    PlayerState st;
    buildLibrary(st, rng);
    fillHistory(st, rng);
    st.builtInStation = 0;
    st.familyRng.seed(1);
    st.selectionRng.seed(2);
    st.rand15.seed(3);

    st.historyDepth = 20;
    bool ok = bench::printRow("select-100k", medianCallMs(st), "ms", 5.0);

    st.historyDepth = -1;
    bench::printInfoRow("select-100k-depth-all", medianCallMs(st), "ms");
    return ok ? 0 : 1;
}
