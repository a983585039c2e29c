#pragma once
#include "library/libraryState.h"
#include "library/model.h"

// Two playlists of every family and a station, so that what a reader took has songs to name:
// indices past the lists, file names that match in both playlists, names that differ in case.
// The files do not exist: a song that is started fails to load, quickly and with its line.
inline void addSmallLibrary(LibraryState& st) {
    const Song midi{"/music/A/song.mid", 0, 0, 0, musicTypeMidi};
    const Song mp3{"/music/A/Tune.MP3", 1, 3, 2, musicTypeMp3};
    const Song module{"/music/B/song.mod", 0, 1, 0, musicTypeTracker};
    st.playlists.push_back({"A", {midi, mp3, module}, 3});
    st.playlists.push_back({"B", {module, Song{"/music/B/tune.mp3", 0, 0, 0, musicTypeMp3}}, 2});
    st.radioStations = {RadioStation{"S", "http://127.0.0.1:9/", 1, 1}};
    st.favorites = {FavoriteEntry{3, 1, 0, 2, mp3.songPath}};
    recountLibrary(st);
}
