#include "core/commands.h"

#include "core/audioStart.h"
#include "core/hostPort.h"
#include "core/playerState.h"
#include "core/transport.h"
#include "gamelink/gameLaunch.h"
#include "library/favorites.h"
#include "playback/audioSetup.h"
#include "settings/exchangeFiles.h"
#include "util/paths.h"

namespace {

bool opensDialog(int id) {
    switch (id) {
    case command::radioDialog:
    case command::favoritesDialog:
    case command::hotkeysDialog:
    case command::songInfoDialog:
    case command::visualDialog:
    case command::foldersDialog:
    case command::aboutDialog:
    case command::stationsDialog:
    case command::updateDialog:
        return true;
    default:
        return false;
    }
}

// The game's favourites come back by file name into the library's flags.
void mergeGameFavorites(PlayerState& st) {
    if (st.marbleTunnelPath.empty())
        return;
    applyFavorites(st, readSongFavs(joinPath(st.marbleTunnelPath, "/SongFavs.txt")));
}

} // namespace

void runCommand(PlayerState& st, int id) {
    if (opensDialog(id)) {
        host::openDialog(id);
        return;
    }
    switch (id) {
    case command::exit:
        // The window's close path: one shutdown, the timers killed, exit code 0.
        host::closeMainWindow();
        break;
    case command::playPause:
        togglePause(st);
        break;
    case command::start:
        // A song that plays is cut, not faded, and a new one fades in on a new soundfont.
        restartAudio(st);
        break;
    case command::stop:
        stopAllStreams(st);
        freeAudio(st);
        host::notifyPlayerChanged(host::PlayerChange::PlayState);
        break;
    case command::nextSong:
        startTransition(st);
        break;
    case command::previousSong:
        previousSong(st);
        break;
    case command::nextSoundFont:
        stepSoundFont(st, +1);
        break;
    case command::previousSoundFont:
        stepSoundFont(st, -1);
        break;
    case command::mergeFavorites:
        mergeGameFavorites(st);
        break;
    case command::nextPlaylist:
        nextPlaylist(st);
        break;
    case command::previousPlaylist:
        previousPlaylist(st);
        break;
    case command::playGame:
        if (!st.marbleTunnelPath.empty()) {
            exportForGame(st);
            launchGame(st);
        }
        break;
    case command::syncLibrary:
        if (!st.marbleTunnelPath.empty())
            exportForGame(st);
        break;
    default:
        break;
    }
}
