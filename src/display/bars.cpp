#include "display/bars.h"

#include "display/canvas.h"
#include "display/displayState.h"
#include "display/layout.h"
#include "display/palette.h"

#include <algorithm>
#include <cmath>

namespace {

// A fraction of a length that may be 0 or unknown: nothing filled rather than a wild width.
float clampedFraction(double fraction) {
    if (!std::isfinite(fraction))
        return 0.0f;
    return static_cast<float>(std::clamp(fraction, 0.0, 1.0));
}

} // namespace

Box positionBarBox(const DisplayState& st) {
    return gridBox(st, 3, 2, 490, 5);
}

Box volumeBarBox(const DisplayState& st) {
    return gridBox(st, 493, 2, 6, 95);
}

Box drawBar(Canvas& canvas, const DisplayState& st, int y, Color fill, Color back, float fraction) {
    const Box box = gridBox(st, 170, y, 300, 8);
    canvas.fillRect(box, back);
    const int filled = static_cast<int>(box.width * clampedFraction(fraction));
    canvas.fillRect({box.x, box.y, filled, box.height}, fill);
    return box;
}

void drawPositionBar(Canvas& canvas, const DisplayState& st) {
    const Box box = positionBarBox(st);
    canvas.fillRect(box, textColor(st));
    const double whole = st.onStation ? st.segmentEnd : st.lengthSeconds;
    // Nothing loaded reads as -1 s of -1 s: an empty bar, not a full one.
    const float played = whole > 0.0 ? clampedFraction(st.positionSeconds / whole) : 0.0f;
    canvas.fillRect({box.x, box.y, static_cast<int>(box.width * played), box.height}, lcdColor(st));
    if (st.onStation || st.totalSongCount <= 0)
        return;
    const int tickWidth = static_cast<int>(2 * st.scaleX);
    for (double mark : {st.segmentStart, st.segmentEnd}) {
        const int x =
            box.x + static_cast<int>(box.width * clampedFraction(mark / st.lengthSeconds));
        canvas.fillRect({x, box.y, tickWidth, box.height}, backColor(st));
    }
}

void drawVolumeBar(Canvas& canvas, DisplayState& st) {
    const Box box = volumeBarBox(st);
    st.volumeBarRect = box;
    canvas.fillRect(box, textColor(st));
    const int bottom = box.y + box.height;
    const int filled = static_cast<int>(box.height * clampedFraction(st.volume));
    canvas.fillRect({box.x, bottom - filled, box.width, filled}, lcdColor(st));
    const int tickHeight = static_cast<int>(2 * minScale(st));
    for (float preset : {st.lowVolume, st.highVolume}) {
        const int y = bottom - static_cast<int>(box.height * clampedFraction(preset));
        canvas.fillRect({box.x, y, box.width, tickHeight}, backColor(st));
    }
}
