#include "core/actions.h"

#include "core/audioStart.h"
#include "core/hostPort.h"
#include "core/playerState.h"
#include "core/transport.h"
#include "core/volume.h"
#include "core/windowEvents.h"
#include "display/pages.h"
#include "input/actionSteps.h"
#include "input/controllers.h"
#include "library/model.h"
#include "playback/audioSetup.h"
#include "playback/engine/engine.h"

namespace {

enum class Route { Keyboard, Controller };

// On the keyboard a station's count never changes; on a controller it does.
void countFavorite(PlayerState& st, Route route, bool up) {
    auto count = [up](int& favoriteCount, int& flag) {
        up ? countUp(favoriteCount, flag) : countDown(favoriteCount, flag);
    };
    if (!st.onStation) {
        if (Song* song = findSong(st, {st.playingPlaylist, st.playingSong}))
            count(song->favoriteCount, song->isFavorite);
    } else if (route == Route::Controller) {
        if (RadioStation* station = findStation(st, st.currentStation))
            count(station->favoriteCount, station->favorite);
    }
    if (route == Route::Controller)
        st.buttonsDirty = true;
}

// Whatever plays stops with the audio closed; with nothing playing the audio comes back and a
// song starts.
void stopOrStart(PlayerState& st) {
    bool playing = false;
    for (ChannelHandle handle :
         {st.musicStream, st.musicStreamNext, st.trackerStream, st.trackerStreamNext})
        if (channelIsActive(handle) == ChannelState::Playing) {
            playing = true;
            break;
        }
    if (playing) {
        freeAudio(st);
        host::notifyPlayerChanged(host::PlayerChange::PlayState);
    } else {
        initAudio(st);
        startPlayback(st);
    }
    st.buttonsDirty = true;
}

// A keyboard step holds its latch until the chord is let go, so a held key steps once; timer 2
// watches for that.
void stepVolume(PlayerState& st, Route route, bool up) {
    if (route == Route::Keyboard) {
        bool& latch = up ? st.volumeUpLatch : st.volumeDownLatch;
        if (latch)
            return;
        latch = true;
        st.volume = steppedVolume(st.volume, up ? 0.05 : -0.05);
        applyVolume(st);
        schedulePolling(st);
        return;
    }
    st.volume = steppedVolume(st.volume, up ? 0.01 : -0.01);
    applyVolume(st);
    st.lcdDirty = true;
}

void runAction(PlayerState& st, int id, Route route) {
    switch (id) {
    case action::nextSong:
        startTransition(st);
        break;
    case action::previousSong:
        previousSong(st);
        break;
    case action::playPause:
        togglePause(st);
        if (route == Route::Controller)
            st.buttonsDirty = true;
        break;
    case action::stopStart:
        stopOrStart(st);
        break;
    case action::volumeToggle:
        if (route == Route::Keyboard) {
            startPlayback(st); // over what plays, as the key always did
        } else {
            toggleVolumeLevel(st);
            st.lcdDirty = true;
        }
        break;
    case action::nextSoundFont:
        stepSoundFont(st, +1);
        break;
    case action::previousSoundFont:
        stepSoundFont(st, -1);
        break;
    case action::favoriteUp:
    case action::favoriteDown:
        countFavorite(st, route, id == action::favoriteUp);
        break;
    case action::quit:
        // The window's close path: one shutdown, exit code 0.
        host::closeMainWindow();
        break;
    case action::volumeUp:
    case action::volumeDown:
        stepVolume(st, route, id == action::volumeUp);
        break;
    case action::home:
        goHome(st);
        break;
    case action::nextStation:
        nextPlaylist(st);
        break;
    case action::previousStation:
        previousPlaylist(st);
        break;
    default:
        break;
    }
}

} // namespace

void runKeyboardAction(PlayerState& st, int id) {
    runAction(st, id, Route::Keyboard);
}

void runControllerAction(PlayerState& st, int id) {
    // Every row rumbles once a press, a spare row too: the user feels that the input was taken.
    if (id >= 0 && id < hotkeyRowCount && !st.actionRumbled[id] && st.useRumble) {
        rumble(st, st.currentController, st.rumbleTime);
        st.actionRumbled[id] = true;
    }
    runAction(st, id, Route::Controller);
}

void registerHotkeys(PlayerState& st) {
    for (int id = 0; id < hotkeyRowCount; ++id) {
        const HotkeyBinding& row = st.hotkeyTable[id];
        const int modifiers = (row.ctrl ? 2 : 0) + (row.alt ? 1 : 0) + (row.shift ? 4 : 0);
        host::registerHotkey(id, modifiers, row.vkKey);
    }
}

void unregisterHotkeys(PlayerState&) {
    for (int id = 0; id < hotkeyRowCount; ++id)
        host::unregisterHotkey(id);
}

void reregisterHotkeys(PlayerState& st) {
    unregisterHotkeys(st);
    registerHotkeys(st);
}
