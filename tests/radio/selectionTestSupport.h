#pragma once
#include "core/playerState.h"
#include "library/model.h"
#include "radio/selection.h"

#include <array>
#include <string>
#include <tuple>
#include <vector>

// In-memory libraries for the selection tests. Paths are unique, "p<playlist>s<song><ext>", so a
// picked song can be told from its neighbours.
namespace selectionTest {

// MIDI, MP3, Tracker, Favorites, Radio: the order of the ratios and of the families.
using Ratios = std::array<int, 5>;

inline Song song(MusicType type, int isFavorite = 0, int favoriteCount = 0) {
    const char* extension = type == musicTypeMidi ? ".mid" : type == musicTypeMp3 ? ".mp3" : ".xm";
    return Song{extension, isFavorite, 0, favoriteCount, type};
}

inline Song favorite(MusicType type, int favoriteCount = 1) {
    return song(type, 1, favoriteCount);
}

inline void addPlaylist(PlayerState& st, std::vector<Song> songs, int iRadioMode = 0) {
    Playlist playlist;
    int p = static_cast<int>(st.playlists.size());
    for (size_t s = 0; s < songs.size(); ++s)
        songs[s].songPath = "p" + std::to_string(p) + "s" + std::to_string(s) + songs[s].songPath;
    playlist.songs = std::move(songs);
    playlist.songCount = static_cast<int>(playlist.songs.size());
    playlist.iRadioMode = iRadioMode;
    st.playlists.push_back(std::move(playlist));
}

inline void addStations(PlayerState& st, std::vector<int> favoriteCounts) {
    for (int count : favoriteCounts)
        st.radioStations.push_back(RadioStation{"station", "http://127.0.0.1/", 0, count});
}

inline void setRatios(PlayerState& st, Ratios r) {
    std::tie(st.rawMIDI, st.rawMP3, st.rawTracker, st.rawFav, st.rawRadio) = std::tuple_cat(r);
}

inline Ratios ratiosOf(const PlayerState& st) {
    return {st.rawMIDI, st.rawMP3, st.rawTracker, st.rawFav, st.rawRadio};
}

// The counters as start-up leaves them, then the ratios (after the recount, which clears some)
// and seeded generators; with pastFirstPick the run has already made its first family draw.
inline void prepare(PlayerState& st, Ratios ratios, unsigned seed, bool pastFirstPick = true) {
    recountLibrary(st);
    st.scanPlaylistCount = static_cast<int>(st.playlists.size());
    st.scanSongCount = 0;
    for (const Playlist& playlist : st.playlists)
        st.scanSongCount += static_cast<int>(playlist.songs.size());
    setRatios(st, ratios);
    st.familyRng.seed(seed);
    st.selectionRng.seed(seed + 1);
    st.rand15.seed(seed + 2);
    if (pastFirstPick) {
        st.firstFamilyPick = false;
        st.savedRawRadioTaken = true;
    }
}

// Seeds rand15 with the first seed whose next draw satisfies wanted.
inline void seedRand15Where(PlayerState& st, auto wanted) {
    for (unsigned seed = 0;; ++seed) {
        Rand15 probe;
        probe.seed(seed);
        if (wanted(probe.next())) {
            st.rand15.seed(seed);
            return;
        }
    }
}

inline std::vector<SongRef> selectMany(PlayerState& st, int count) {
    std::vector<SongRef> picks;
    for (int i = 0; i < count; ++i)
        picks.push_back(selectNextSong(st));
    return picks;
}

} // namespace selectionTest
