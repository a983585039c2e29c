#include "core/windowEvents.h"

#include "core/hostPort.h"
#include "core/playerState.h"
#include "core/transport.h"
#include "display/plainScreen.h"
#include "playback/tags.h"
#include "radio/segments.h"

namespace {

// A strip of the base layout in pixels, each value scaled and truncated.
host::Rect strip(const PlayerState& st, int left, int top, int width, int height) {
    int x = static_cast<int>(left * st.scaleX);
    int y = static_cast<int>(top * st.scaleY);
    return {x, y, x + static_cast<int>(width * st.scaleX),
            y + static_cast<int>(height * st.scaleY)};
}

void onRepaintTick(PlayerState& st) {
    host::Rect seek = strip(st, 5, 2, 490, 10);
    host::invalidate(&seek, false);
    host::Rect text = strip(st, 20, 70, 500, 70);
    host::invalidate(&text, false);
    if (st.lcdDirty) {
        host::Rect lcd = strip(st, 1, 10, 490, 125);
        host::invalidate(&lcd, false);
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
        afterRepaintTest(st);
    }
    st.paintedSinceTick = false;
}

void onStationTagsTick(PlayerState& st) {
    if (!st.onStation)
        return;
    readStationTags(st, st.activeHandle);
    st.previousStationName = st.stationName;
    st.lcdDirty = true;
}

void onVolumeTextTimeout(PlayerState& st) {
    host::killTimer(host::timerVolumeText);
    st.volumeTextShown = false;
    st.volumeTimerArmed = false;
    st.lcdDirty = true;
}

} // namespace

void onTimer(PlayerState& st, int id) {
    switch (id) {
    case host::timerRepaint:
        onRepaintTick(st);
        break;
    case host::timerStationTags:
        onStationTagsTick(st);
        break;
    case host::timerVolumeText:
        onVolumeTextTimeout(st);
        break;
    default:
        // Volume latches, the game link, controllers, search keys and the automatic borderless
        // mode join these ticks with their features.
        break;
    }
}

void onPaint(PlayerState& st, Canvas& canvas) {
    refreshPosition(st);
    paintPlainScreen(st, canvas);
    afterRepaintTest(st);
    st.paintedSinceTick = true;
}

void onResize(PlayerState& st, int width, int height) {
    st.clientWidth = width;
    st.clientHeight = height;
    st.scaleX = static_cast<float>(width) / 500.0f;
    st.scaleY = static_cast<float>(height) / 155.0f;
}

// The painted controls answer the mouse once the player screen exists.
void onLeftPress(PlayerState&, int, int) {}

void onRightPress(PlayerState&, int, int) {}
