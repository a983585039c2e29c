#include "playback/loading.h"

#include "core/log.h"
#include "core/playerState.h"
#include "library/model.h"
#include "radio/selection.h"

// Draws the first song and names it, so that the window and the log show what would sound; the
// audio engine will load and fade it in here.
void startPlayback(PlayerState& st) {
    SongRef ref = selectNextSong(st);
    if (st.onStation) {
        if (ref.plistIndex >= 0 && ref.plistIndex < static_cast<int>(st.radioStations.size()))
            logOut("Drawn station: %s\n", st.radioStations[ref.plistIndex].url.c_str());
    } else {
        if (ref.plistIndex < 0 || ref.plistIndex >= static_cast<int>(st.playlists.size())) {
            logErr("Error: Invalid playlist index.\n");
            return;
        }
        const Playlist& playlist = st.playlists[ref.plistIndex];
        if (ref.songIndex < 0 || ref.songIndex >= static_cast<int>(playlist.songs.size())) {
            logErr("Error: Invalid song index.\n");
            return;
        }
        st.playingPlaylist = ref.plistIndex;
        st.playingSong = ref.songIndex;
        st.songFilePath = playlist.songs[ref.songIndex].songPath;
        st.songTitle = titleFromPath(st.songFilePath);
        logOut("Drawn song: %s\n", st.songFilePath.c_str());
    }
    if (!st.songHistory.empty()) {
        const HistoryEntry& row = st.songHistory.back();
        logOut("History row %d: songType %d, songIndex %d, plistIndex %d\n", st.historyPosition,
               row.songType, row.songIndex, row.plistIndex);
    }
}
