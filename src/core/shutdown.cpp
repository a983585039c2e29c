#include "core/shutdown.h"

#include "core/playerState.h"
#include "gamelink/commandFile.h"
#include "input/controllers.h"
#include "library/favorites.h"
#include "platform/platform.h"
#include "playback/audioSetup.h"
#include "playback/fadeWorker.h"

void shutdown(PlayerState& st) {
    platform::killTimer(platform::timerRepaint);
    platform::killTimer(platform::timerVolumeLatch);
    platform::killTimer(platform::timerPoll);
    // No fade-out worker may outlive the state it works on: each clears its pair now.
    endFadeWorkers(st);
    freeAudio(st);
    closeControllers(st);
    rebuildFavorites(st);
    if (!st.marbleTunnelPath.empty())
        writeMusicRunning(st, "no");
}
