#include "display/layout.h"

#include "display/displayState.h"

#include <algorithm>

int gridX(const DisplayState& st, float units) {
    return static_cast<int>(units * st.scaleX);
}

int gridY(const DisplayState& st, float units) {
    return static_cast<int>(units * st.scaleY);
}

Box gridBox(const DisplayState& st, float x, float y, float width, float height) {
    return {gridX(st, x), gridY(st, y), gridX(st, width), gridY(st, height)};
}

float minScale(const DisplayState& st) {
    return std::min(st.scaleX, st.scaleY);
}

bool tall(const DisplayState& st) {
    return st.scaleY > 2.0f;
}

void onResize(DisplayState& st, int width, int height) {
    st.clientWidth = width;
    st.clientHeight = height;
    st.scaleX = static_cast<float>(width) / gridWidth;
    st.scaleY = static_cast<float>(height) / gridHeight;
}
