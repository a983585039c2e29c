#include "core/windowModes.h"

#include "core/hostPort.h"
#include "core/playerState.h"
#include "display/windowModes.h"

namespace {

void runSteps(PlayerState& st, const FormSteps& steps) {
    if (steps.killTimer)
        host::killTimer(host::timerBorderless);
    if (steps.startTimer)
        host::setTimer(host::timerBorderless, borderlessDelayMs);
    if (steps.toggle)
        toggleBorderless(st);
}

} // namespace

void toggleBorderless(PlayerState&) {
    host::setBorderless(!host::isBorderless());
    host::invalidate(nullptr, true);
}

void setWindowOpacity(PlayerState& st, int alpha) {
    st.windowAlpha = dialogOpacity(alpha);
    host::setOpacity(st.windowAlpha);
}

void onMouseMoved(PlayerState& st, int screenX, int screenY) {
    runSteps(st, cursorMoved(st, screenX, screenY));
}

void onBorderlessTimer(PlayerState& st) {
    runSteps(st, borderlessTimerFired(st));
}

bool onSystemKey(PlayerState& st, int virtualKey, bool altDown, bool autoRepeat) {
    if (!systemKeyToggles(virtualKey, altDown, host::isBorderless(), autoRepeat))
        return false;
    toggleBorderless(st);
    return true;
}
