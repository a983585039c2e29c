#include "radio/walks.h"

#include "core/playerState.h"
#include "library/model.h"
#include "playback/crossfade.h"
#include "radio/selection.h"

namespace {

bool rowExists(const PlayerState& st, const HistoryEntry& row) {
    if (row.songType == musicTypeStation)
        return row.plistIndex >= 0 && row.plistIndex < static_cast<int>(st.radioStations.size());
    return findSong(st, SongRef{row.plistIndex, row.songIndex}) != nullptr;
}

// A row that names what is gone (a file of an earlier run, a hand edit) ends the walk, and a
// new selection plays instead of silence.
SongRef readHistoryRow(PlayerState& st) {
    if (st.historyPosition < 0 || st.historyPosition >= static_cast<int>(st.songHistory.size()) ||
        !rowExists(st, st.songHistory[st.historyPosition])) {
        st.historyNavigation = 0;
        st.historyPosition = st.historyEnd;
        return selectNextSong(st);
    }
    const HistoryEntry& row = st.songHistory[st.historyPosition];
    st.previousMusicType = st.currentMusicType;
    st.currentMusicType = row.songType;
    st.onStation = row.songType == musicTypeStation;
    if (st.onStation)
        st.currentStation = row.plistIndex;
    return SongRef{row.plistIndex, row.songIndex};
}

SongRef playChosen(PlayerState& st, SongRef ref) {
    st.previousMusicType = st.currentMusicType;
    if (const Song* song = findSong(st, ref))
        st.currentMusicType = song->musicType;
    st.onStation = false;
    return ref;
}

int lastIndex(std::size_t size) {
    return static_cast<int>(size) - 1;
}

} // namespace

SongRef chooseTransitionSource(PlayerState& st) {
    if (st.historyNavigation == 1) {
        ++st.historyPosition;
        return readHistoryRow(st);
    }
    if (st.historyNavigation == 2) {
        st.historyNavigation = 1;
        return readHistoryRow(st);
    }
    // An empty result list (or a row past its end) plays nothing old again: a new selection.
    if (st.searchActive && st.searchRow >= 0 &&
        st.searchRow < static_cast<int>(st.searchResults.size()))
        return playChosen(st, st.searchResults[st.searchRow]);
    if (st.playRequested)
        return playChosen(st, SongRef{st.requestedPlaylist, st.requestedSong});
    return selectNextSong(st);
}

void nextPlaylist(PlayerState& st) {
    switch (st.stationMode) {
    case 1:
    case 2:
        st.builtInStation = st.stationMode;
        ++st.stationMode;
        break;
    case 3:
        st.stationMode = 4;
        st.builtInStation = 0;
        st.onStation = true;
        st.currentStation = 0;
        break;
    case 4:
        if (++st.currentStation > lastIndex(st.radioStations.size())) {
            st.onStation = false;
            st.stationMode = 0;
            st.modeSongIndex = -1;
            st.modePlaylist = 0;
        }
        break;
    default:
        st.modeSongIndex = -1;
        if (++st.modePlaylist > lastIndex(st.playlists.size())) {
            st.stationMode = 1;
            st.modePlaylist = 0;
        }
        break;
    }
    startTransition(st);
}

void previousPlaylist(PlayerState& st) {
    switch (st.stationMode) {
    case 1:
        st.stationMode = 0;
        st.modeSongIndex = -1;
        st.modePlaylist = lastIndex(st.playlists.size());
        break;
    case 2:
    case 3:
        --st.stationMode;
        st.builtInStation = st.stationMode - 1;
        break;
    case 4:
        if (--st.currentStation < 0) {
            st.onStation = false;
            st.stationMode = 3;
            st.modeSongIndex = -1;
            st.modePlaylist = lastIndex(st.playlists.size());
            st.builtInStation = 2;
        }
        break;
    default:
        st.modeSongIndex = -1;
        if (--st.modePlaylist < 0) {
            st.currentStation = lastIndex(st.radioStations.size());
            st.stationMode = 4;
            st.onStation = true;
        }
        break;
    }
    startTransition(st);
}

void previousSong(PlayerState& st) {
    if (st.historyPosition <= 0)
        return;
    --st.historyPosition;
    st.historyNavigation = 2;
    startTransition(st);
}
