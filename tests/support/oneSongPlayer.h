#pragma once
#include "core/playerState.h"

// A library of one playlist of one song, that song on show, its segment ending at 130 s: what
// the screen's tests paint.
inline void setUpOneSong(PlayerState& st) {
    st.directoryPaths = {"/music"};
    st.playlists.push_back(Playlist{"Rock", {Song{"/music/Rock/song.mp3", 1, 4, 2, 1}}, 1});
    st.totalSongCount = 1;
    st.playlistCount = 1;
    st.songTitle = "A Song";
    st.songFilePath = "/music/Rock/song.mp3";
    st.currentMusicType = musicTypeMp3;
    st.segmentEnd = 130;
}
