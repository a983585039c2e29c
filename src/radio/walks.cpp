#include "radio/walks.h"

#include "library/model.h"
#include "radio/radioState.h"
#include "radio/selection.h"

namespace {

bool rowExists(const RadioState& st, const HistoryEntry& row) {
    if (row.songType == musicTypeStation)
        return row.plistIndex >= 0 && row.plistIndex < static_cast<int>(st.radioStations.size());
    return findSong(st, SongRef{row.plistIndex, row.songIndex}) != nullptr;
}

// A row that names what is gone (a file of an earlier run, a hand edit) ends the walk, and a
// new selection plays instead of silence.
SongRef readHistoryRow(RadioState& st) {
    if (st.historyPosition < 0 || st.historyPosition >= static_cast<int>(st.songHistory.size()) ||
        !rowExists(st, st.songHistory[st.historyPosition])) {
        st.historyNavigation = historyWalkOff;
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

SongRef playChosen(RadioState& st, SongRef ref) {
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

SongRef chooseTransitionSource(RadioState& st) {
    if (st.historyNavigation == historyWalkForward) {
        ++st.historyPosition;
        return readHistoryRow(st);
    }
    if (st.historyNavigation == historyWalkBack) {
        st.historyNavigation = historyWalkForward;
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

void stepModeForward(RadioState& st) {
    switch (st.stationMode) {
    case stationModeRadio:
    case stationModeTop40:
        st.builtInStation = st.stationMode;
        ++st.stationMode;
        break;
    case stationModeUndiscovered:
        st.stationMode = stationModeStation;
        st.builtInStation = builtInAllSongs;
        st.onStation = true;
        st.currentStation = 0;
        break;
    case stationModeStation:
        if (++st.currentStation > lastIndex(st.radioStations.size())) {
            st.onStation = false;
            st.stationMode = stationModePlaylist;
            st.modeSongIndex = -1;
            st.modePlaylist = 0;
        }
        break;
    default:
        st.modeSongIndex = -1;
        if (++st.modePlaylist > lastIndex(st.playlists.size())) {
            st.stationMode = stationModeRadio;
            st.modePlaylist = 0;
        }
        break;
    }
}

void stepModeBack(RadioState& st) {
    switch (st.stationMode) {
    case stationModeRadio:
        st.stationMode = stationModePlaylist;
        st.modeSongIndex = -1;
        st.modePlaylist = lastIndex(st.playlists.size());
        break;
    case stationModeTop40:
    case stationModeUndiscovered:
        --st.stationMode;
        st.builtInStation = st.stationMode - 1;
        break;
    case stationModeStation:
        if (--st.currentStation < 0) {
            st.onStation = false;
            st.stationMode = stationModeUndiscovered;
            st.modeSongIndex = -1;
            st.modePlaylist = lastIndex(st.playlists.size());
            st.builtInStation = builtInUndiscovered;
        }
        break;
    default:
        st.modeSongIndex = -1;
        if (--st.modePlaylist < 0) {
            st.currentStation = lastIndex(st.radioStations.size());
            st.stationMode = stationModeStation;
            st.onStation = true;
        }
        break;
    }
}

bool stepBackInHistory(RadioState& st) {
    if (st.historyPosition <= 0)
        return false;
    --st.historyPosition;
    st.historyNavigation = historyWalkBack;
    return true;
}

void endHistoryWalkAtLastRow(RadioState& st) {
    if (st.historyNavigation != historyWalkOff && st.historyPosition >= st.historyEnd - 1) {
        st.historyNavigation = historyWalkOff;
        st.historyPosition = st.historyEnd - 1;
    }
}
