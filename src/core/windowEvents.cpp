#include "core/windowEvents.h"

#include "core/playerState.h"
#include "display/plainScreen.h"
#include "platform/platform.h"

void onTimer(PlayerState&, int id) {
    // The 250 ms tick only asks for a repaint; everything that moves happens in the paint.
    if (id == platform::timerRepaint)
        platform::invalidate(nullptr, false);
}

void onPaint(PlayerState& st, Canvas& canvas) {
    paintPlainScreen(st, canvas);
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
