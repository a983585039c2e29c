#include "core/mouse.h"

#include "core/hostPort.h"
#include "core/playerState.h"
#include "core/transport.h"
#include "core/volume.h"
#include "core/windowEvents.h"
#include "display/bars.h"
#include "display/colors.h"
#include "display/hitTest.h"
#include "display/pages.h"
#include "input/controllers.h"
#include "library/favorites.h"
#include "library/model.h"
#include "playback/engine/engine.h"

#include <array>

namespace {

enum Control {
    controlPlay,
    controlNext,
    controlPrevious,
    controlShuffle,
    controlPreviousPlaylist,
    controlNextPlaylist,
    controlPlaylistKind,
    controlVolume,
    controlPageBack,
    controlHome,
    controlPageForward,
    controlFigures,
    controlPower,
    controlLamp,
    controlSearch,
};

// The seek bar is not recorded: it follows the window's size at once. A station's length is
// unknown and the engine refuses its position: the press does nothing.
void seekTo(PlayerState& st, int x) {
    const Box bar = positionBarBox(st);
    const float fraction = static_cast<float>(x - bar.x) / static_cast<float>(bar.width);
    const float length = static_cast<float>(
        channelBytesToSeconds(st.activeHandle, channelGetLength(st.activeHandle)));
    seekActiveSong(st, static_cast<double>(length * fraction));
    invalidateBox(bar);
}

// Heart 0 counts the song, heart 1 its playlist; on a station both count the station.
void countHeart(PlayerState& st, int heart, bool up) {
    auto count = [up](auto* row) {
        if (row)
            up ? countFavoriteUp(*row) : countFavoriteDown(*row);
    };
    if (st.onStation)
        count(findStation(st, st.currentStation));
    else if (heart == 0)
        count(findSong(st, {st.playingPlaylist, st.playingSong}));
    else
        count(findPlaylist(st, st.playingPlaylist));
    st.lcdDirty = true;
}

// A row of the list page: the three built-in stations, the stations, the playlists. A row whose
// station or playlist has gone since the list was made does nothing.
void chooseListRow(PlayerState& st, int row) {
    const int stations = st.stationCount;
    if (row < 3) {
        st.builtInStation = row;
        st.stationMode = row + 1;
        st.onStation = false;
    } else if (row < 3 + stations) {
        if (!findStation(st, row - 3))
            return;
        st.onStation = true;
        st.currentStation = row - 3;
        st.stationMode = stationModeStation;
    } else {
        if (!findPlaylist(st, row - 3 - stations))
            return;
        st.modeSongIndex = 0;
        st.modePlaylist = row - 3 - stations;
        st.stationMode = stationModePlaylist;
        st.onStation = false;
    }
    startTransition(st);
}

void pressCells(PlayerState& st, int x, int y) {
    const int cell = firstHit(st.cellRects, x, y);
    if (cell < 0)
        return;
    if (st.searchActive) {
        chooseSearchCell(st, cell);
    } else if (st.listKind == 0 && st.listPage >= 0) {
        const int row = cell + st.listPage * 10;
        if (row < static_cast<int>(st.listEntries.size()))
            chooseListRow(st, row);
    }
}

void pressBars(PlayerState& st, int x, int y) {
    const std::array<int*, 10> fields{&st.rawMIDI,
                                      &st.rawMP3,
                                      &st.rawTracker,
                                      &st.rawFav,
                                      &st.rawRadio,
                                      &st.songPlayDurationMin,
                                      &st.songPlayDurationMax,
                                      &st.iSongPlayDurationMin,
                                      &st.iSongPlayDurationMax,
                                      &st.FADE_DURATION_MS};
    constexpr std::array<int, 10> largest{100, 100, 100, 100, 100, 600, 600, 600, 600, 20000};
    const int first = st.listPage == -1 ? 0 : 5;
    for (int bar = first; bar < 10; ++bar) {
        if (!contains(st.barRects[bar], x, y))
            continue;
        *fields[bar] = barValueAt(st.barRects[bar], x, largest[bar]);
        st.lcdDirty = true;
        return;
    }
}

} // namespace

void chooseSearchCell(PlayerState& st, int cell) {
    const int row = cell + (st.listPage + 1) * 10;
    if (row >= 0 && row < static_cast<int>(st.searchResults.size())) {
        st.searchRow = row;
        startTransition(st);
    }
}

void pressControl(PlayerState& st, int index) {
    switch (index) {
    case controlPlay:
        togglePause(st);
        break;
    case controlNext:
        startTransition(st);
        break;
    case controlPrevious:
        previousSong(st);
        break;
    case controlShuffle:
        st.shuffle = 1 - st.shuffle;
        st.buttonsDirty = true;
        break;
    case controlPreviousPlaylist:
        previousPlaylist(st);
        break;
    case controlNextPlaylist:
        nextPlaylist(st);
        break;
    case controlPlaylistKind:
        if (Playlist* playlist = findPlaylist(st, st.modePlaylist);
            playlist && st.stationMode == stationModePlaylist)
            playlist->iRadioMode = playlist->iRadioMode == 0 ? 1 : 0;
        break;
    case controlVolume:
        toggleVolumeLevel(st);
        st.lcdDirty = true;
        break;
    case controlPageBack:
        scrollList(st, -1);
        break;
    case controlHome:
        goHome(st);
        break;
    case controlPageForward:
        scrollList(st, +1);
        break;
    case controlFigures:
        st.listKind = st.listKind == 0 ? 1 : 0;
        st.listPage = -1;
        st.lcdDirty = true;
        break;
    case controlPower:
        // The window's own close path shuts the player down once and ends with code 0.
        host::closeMainWindow();
        break;
    case controlLamp:
        applyRandomColorScheme(st);
        st.buttonsDirty = true;
        break;
    case controlSearch:
        toggleSearchPage(st);
        break;
    default:
        break;
    }
}

void onLeftPress(PlayerState& st, int x, int y) {
    if (contains(positionBarBox(st), x, y))
        seekTo(st, x);
    if (contains(st.volumeBarRect, x, y)) {
        st.volume = volumeAt(st.volumeBarRect, y);
        applyVolume(st);
        invalidateBox(st.volumeBarRect);
    }
    const int control = firstHit(st.controlRects, x, y);
    if (control >= 0)
        pressControl(st, control);
    const int controllers = std::min(st.controllerCount, static_cast<int>(maxControllers));
    if (controllers > 0 && firstHit(std::span(st.controllerRects).first(controllers), x, y) >= 0) {
        closeControllers(st);
        openControllers(st);
    }
    const int heart = firstHit(st.heartRects, x, y);
    if (heart >= 0)
        countHeart(st, heart, true);
    pressCells(st, x, y);
    if (st.listKind == 1)
        pressBars(st, x, y);
}

void onRightPress(PlayerState& st, int x, int y) {
    const int heart = firstHit(st.heartRects, x, y);
    if (heart >= 0)
        countHeart(st, heart, false);
    const bool preset =
        st.volumeToggleState == volumeToggleLow || st.volumeToggleState == volumeToggleHigh;
    if (preset && contains(st.volumeBarRect, x, y)) {
        const float value = volumeAt(st.volumeBarRect, y);
        (st.volumeToggleState == volumeToggleHigh ? st.highVolume : st.lowVolume) = value;
        st.volume = value;
        applyVolume(st);
        invalidateBox(st.volumeBarRect);
    }
}
