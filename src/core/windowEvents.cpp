#include "core/windowEvents.h"

#include "core/actions.h"
#include "core/gameCommands.h"
#include "core/hostPort.h"
#include "core/playerState.h"
#include "core/transport.h"
#include "core/windowModes.h"
#include "display/bars.h"
#include "display/layout.h"
#include "display/screen.h"
#include "gamelink/songInfo.h"
#include "input/actionSteps.h"
#include "input/controllers.h"
#include "input/search.h"
#include "playback/tags.h"
#include "radio/segments.h"

namespace {

// A strip of the grid, each value scaled and truncated.
void invalidateStrip(const PlayerState& st, int left, int top, int width, int height) {
    invalidateBox(gridBox(st, left, top, width, height));
}

// The position read-outs move only while something sounds. Asking for their strips with nothing
// playing would paint the same frame four times a second, the largest cost of an idle player; the
// end test then runs from the tick below.
bool positionMoves(const PlayerState& st) {
    TransportState state = transportState(st);
    return state == TransportState::Playing || state == TransportState::Crossfading;
}

// The end test may start a transition whose message box turns the event loop; a tick or a paint
// arriving meanwhile must not start a second one inside the first.
void runEndTest(PlayerState& st) {
    if (st.endTestRunning)
        return;
    st.endTestRunning = true;
    afterRepaintTest(st);
    st.endTestRunning = false;
}

void onRepaintTick(PlayerState& st) {
    if (positionMoves(st)) {
        invalidateStrip(st, 5, 2, 490, 10);
        invalidateStrip(st, 20, 70, 500, 70);
    }
    if (st.volumeTextShown)
        invalidateBox(volumeBarBox(st));
    if (st.lcdDirty) {
        invalidateStrip(st, 1, 10, 490, 125);
        st.lcdDirty = false;
    }
    if (st.buttonsDirty) {
        host::invalidate(nullptr, true);
        st.buttonsDirty = false;
    }
    // A minimised or hidden window gets no repaint; the radio moves on from the tick instead,
    // in the repaint's own order.
    if (!st.paintedSinceTick) {
        refreshPosition(st);
        runEndTest(st);
    }
    st.paintedSinceTick = false;
}

void onStationTagsTick(PlayerState& st) {
    if (!st.onStation)
        return;
    refreshStationTags(st);
}

void onVolumeTextTimeout(PlayerState& st) {
    host::killTimer(host::timerVolumeText);
    st.volumeTextShown = false;
    st.volumeTimerArmed = false;
    st.lcdDirty = true;
}

bool gameLinkActive(const PlayerState& st) {
    return !st.libraryEditInProgress && st.totalSongCount > 0 && !st.marbleTunnelPath.empty();
}

bool anyController(const PlayerState& st) {
    for (const std::string& name : st.controllerNames)
        if (!name.empty())
            return true;
    return false;
}

// The game link first, so that a command runs before the controllers and the search look.
void onPollTick(PlayerState& st) {
    if (gameLinkActive(st)) {
        runGameCommands(st);
        snapshotSongInfo(st);
        writeSongInfo(st);
    }
    pollControllerEvents(st);
    pollControllers(st, [](InputState& input, int id) {
        runControllerAction(static_cast<PlayerState&>(input), id);
    });
    updatePressedButton(st);
    if (st.searchActive)
        pollSearchKeys(st, host::keysDown());
}

void setPeriod(int id, int milliseconds, int& running) {
    if (milliseconds == running)
        return;
    if (milliseconds > 0)
        host::setTimer(id, milliseconds);
    else
        host::killTimer(id);
    running = milliseconds;
}

} // namespace

void invalidateBox(const Box& box) {
    host::Rect rect{box.x, box.y, box.x + box.width, box.y + box.height};
    host::invalidate(&rect, false);
}

void schedulePolling(PlayerState& st) {
    const bool pollWork = gameLinkActive(st) || anyController(st) || st.searchActive;
    setPeriod(host::timerPoll, pollWork ? pollPeriodBusy : pollPeriodIdle, st.pollPeriod);
    const bool latchHeld = st.volumeUpLatch || st.volumeDownLatch;
    setPeriod(host::timerVolumeLatch, latchHeld ? 100 : 0, st.latchPeriod);
}

void onTimer(PlayerState& st, int id) {
    switch (id) {
    case host::timerRepaint:
        onRepaintTick(st);
        schedulePolling(st);
        break;
    case host::timerVolumeLatch:
        releaseVolumeLatches(st, host::keyIsDown);
        schedulePolling(st);
        break;
    case host::timerPoll:
        onPollTick(st);
        schedulePolling(st);
        break;
    case host::timerStationTags:
        onStationTagsTick(st);
        break;
    case host::timerVolumeText:
        onVolumeTextTimeout(st);
        break;
    case host::timerBorderless:
        onBorderlessTimer(st);
        break;
    default:
        // The automatic borderless mode joins these ticks with its feature.
        break;
    }
}

void onPaint(PlayerState& st, Canvas& canvas) {
    paintScreen(canvas, st);
}

void afterPaint(PlayerState& st) {
    if (st.volumeTimerWanted) {
        st.volumeTimerWanted = false;
        host::setTimer(host::timerVolumeText, 3000);
    }
    runEndTest(st);
    st.paintedSinceTick = true;
}
