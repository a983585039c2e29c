#pragma once
#include "core/playerState.h"
#include "library/model.h"
#include "radio/selection.h"

#include <string>
#include <vector>

// In-memory libraries for the selection tests. Paths are unique, "p<playlist>s<song><ext>", so a
// picked song can be told from its neighbours.
namespace selectionTest {

inline const char* extensionFor(MusicType type) {
    return type == musicTypeMidi ? ".mid" : type == musicTypeMp3 ? ".mp3" : ".xm";
}

inline Song song(MusicType type, int isFavorite = 0, int favoriteCount = 0) {
    Song s;
    s.songPath = extensionFor(type);
    s.musicType = type;
    s.isFavorite = isFavorite;
    s.favoriteCount = favoriteCount;
    return s;
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

// The counters as start-up leaves them. Ratios are set afterwards: the recount clears some.
inline void countLibrary(PlayerState& st) {
    recountLibrary(st);
    st.scanPlaylistCount = static_cast<int>(st.playlists.size());
    st.scanSongCount = 0;
    for (const Playlist& playlist : st.playlists)
        st.scanSongCount += static_cast<int>(playlist.songs.size());
}

inline void setRatios(PlayerState& st, int midi, int mp3, int tracker, int fav, int radio) {
    st.rawMIDI = midi;
    st.rawMP3 = mp3;
    st.rawTracker = tracker;
    st.rawFav = fav;
    st.rawRadio = radio;
}

// Seeded generators; with pastFirstPick the run has already made its first family draw.
inline void seedAll(PlayerState& st, unsigned seed, bool pastFirstPick = true) {
    st.familyRng.seed(seed);
    st.selectionRng.seed(seed + 1);
    st.rand15.seed(seed + 2);
    if (pastFirstPick) {
        st.firstFamilyPick = false;
        st.savedRawRadioTaken = true;
    }
}

inline const Song& songOf(const PlayerState& st, SongRef ref) {
    return st.playlists.at(ref.plistIndex).songs.at(ref.songIndex);
}

inline std::vector<SongRef> selectMany(PlayerState& st, int count) {
    std::vector<SongRef> picks;
    for (int i = 0; i < count; ++i)
        picks.push_back(selectNextSong(st));
    return picks;
}

} // namespace selectionTest
