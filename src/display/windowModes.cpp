#include "display/windowModes.h"

#include "display/displayState.h"

#include <algorithm>

FormSteps cursorMoved(DisplayState& st, int screenX, int screenY) {
    FormSteps steps;
    if (st.borderlessAuto != 1)
        return steps;
    if (screenX == st.lastCursorX && screenY == st.lastCursorY)
        return steps; // a move event without a movement
    steps.killTimer = st.borderlessTimerActive;
    st.lastCursorX = screenX;
    st.lastCursorY = screenY;
    steps.startTimer = true;
    st.borderlessTimerActive = true;
    if (st.autoBorderlessActive) {
        steps.toggle = true;
        st.autoBorderlessActive = false;
        st.autoBorderlessRestored = true;
    }
    return steps;
}

FormSteps borderlessTimerFired(DisplayState& st) {
    FormSteps steps;
    if (st.borderlessAuto != 1)
        return steps;
    steps.killTimer = true;
    st.borderlessTimerActive = false;
    if (!st.autoBorderlessActive && !st.autoBorderlessRestored) {
        steps.toggle = true;
        st.autoBorderlessActive = true;
    }
    st.autoBorderlessRestored = false;
    return steps;
}

bool systemKeyToggles(int virtualKey, bool altDown, bool borderless, bool autoRepeat) {
    if (autoRepeat)
        return false;
    if (virtualKey == virtualKeyAlt)
        return borderless;
    return virtualKey == virtualKeyB && altDown;
}

int dialogOpacity(int alpha) {
    return std::clamp(alpha, 80, 255);
}

int startupOpacity(int alpha) {
    return std::clamp(alpha, 0, 255);
}
