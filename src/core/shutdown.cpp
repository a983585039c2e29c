#include "core/shutdown.h"

#include "core/paths.h"
#include "core/playerState.h"
#include "gamelink/commandFile.h"
#include "input/controllers.h"
#include "library/cache.h"
#include "library/favorites.h"
#include "library/history.h"
#include "platform/platform.h"
#include "playback/audioSetup.h"
#include "playback/fadeWorker.h"
#include "settings/musicSettings.h"

void shutdown(PlayerState& st) {
    platform::killTimer(platform::timerRepaint);
    platform::killTimer(platform::timerVolumeLatch);
    platform::killTimer(platform::timerPoll);
    saveLibraryCache(st);
    saveMusicSettings(st);
    // No fade-out worker may outlive the state it works on: each clears its pair now.
    endFadeWorkers(st);
    freeAudio(st);
    closeControllers(st);
    rebuildFavorites(st);
    saveSongHistory(st, joinPath(st.dataDirectory, "/Song History.json"));
    if (!st.marbleTunnelPath.empty())
        writeMusicRunning(st, "no");
}
