#include "core/shutdown.h"

#include "core/actions.h"
#include "core/hostPort.h"
#include "core/libraryEdits.h"
#include "core/playerState.h"
#include "display/textures.h"
#include "gamelink/commandFile.h"
#include "input/controllers.h"
#include "input/hotkeys.h"
#include "library/favorites.h"
#include "library/history.h"
#include "library/stations.h"
#include "playback/audioSetup.h"
#include "playback/fadeWorker.h"
#include "playback/loudnessWorker.h"
#include "settings/configFile.h"
#include "settings/exchangeFiles.h"
#include "util/paths.h"

void shutdown(PlayerState& st) {
    host::killTimer(host::timerRepaint);
    host::killTimer(host::timerVolumeLatch);
    host::killTimer(host::timerPoll);
    unregisterHotkeys(st);
    releaseTextures(st);
    saveColorsIfMissing(st);
    saveLibraryCache(st); // and MusicSettings.json; the music plays on until the audio goes
    if (!st.marbleTunnelPath.empty())
        exportForGame(st);
    // No fade-out worker may outlive the state it works on: each clears its pair now.
    endFadeWorkers(st);
    endLoudnessWorker(st); // abandons its song, and saves what it measured
    freeAudio(st);
    closeControllers(st);
    rebuildFavorites(st);
    saveStations(st, joinPath(st.dataDirectory, "/InternetStations.json"));
    saveFavoritesFile(st, joinPath(st.dataDirectory, "/favorite.json"));
    saveSongHistory(st, joinPath(st.dataDirectory, "/Song History.json"));
    if (!st.marbleTunnelPath.empty())
        writeMusicRunning(st, "no");
}
