#include "input/actionSteps.h"

#include "input/inputState.h"

#include <algorithm>

float steppedVolume(float volume, double step) {
    return static_cast<float>(std::clamp(static_cast<double>(volume) + step, 0.0, 1.0));
}

void countUp(int& favoriteCount, int& flag) {
    flag = 1;
    ++favoriteCount;
}

void countDown(int& favoriteCount, int& flag) {
    --favoriteCount;
    if (favoriteCount <= 0) {
        favoriteCount = 0;
        flag = 0;
    }
}

void releaseVolumeLatches(InputState& st, const std::function<bool(int vk)>& keyDown) {
    const bool control = keyDown(vkControl);
    if (!control || !keyDown(vkOemPlus))
        st.volumeUpLatch = false;
    if (!control || !keyDown(vkOemMinus))
        st.volumeDownLatch = false;
}
