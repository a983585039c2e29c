#include "display/hitTest.h"

#include <algorithm>

int firstHit(std::span<const Box> rects, int x, int y) {
    for (std::size_t i = 0; i < rects.size(); ++i)
        if (contains(rects[i], x, y))
            return static_cast<int>(i);
    return -1;
}

float volumeAt(const Box& bar, int y) {
    const float bottom = static_cast<float>(bar.y + bar.height);
    const float value = (bottom - static_cast<float>(y)) / static_cast<float>(bar.height);
    return std::clamp(value, 0.0f, 1.0f);
}

int barValueAt(const Box& bar, int x, int largest) {
    const float fraction = static_cast<float>(x - bar.x) / static_cast<float>(bar.width);
    const int value = static_cast<int>(fraction * static_cast<float>(largest));
    return std::clamp(value, 0, largest);
}
