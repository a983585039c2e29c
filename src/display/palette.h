#pragma once
#include "display/displayState.h"
#include "display/geometry.h"

// The three colours of the look, as the screen paints them.
inline Color textColor(const DisplayState& st) {
    return colorOf(st.textR, st.textG, st.textB);
}
inline Color backColor(const DisplayState& st) {
    return colorOf(st.bkGrR, st.bkGrG, st.bkGrB);
}
inline Color lcdColor(const DisplayState& st) {
    return colorOf(st.songR, st.songG, st.songB);
}
