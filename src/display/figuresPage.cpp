#include "display/bars.h"
#include "display/canvas.h"
#include "display/displayState.h"
#include "display/pages.h"
#include "display/palette.h"
#include "display/panels.h"
#include "util/textFormat.h"

#include <array>
#include <cmath>
#include <limits>

namespace {

struct FigureLine {
    std::string text;
    float fraction;
};

// Five lines of text, each over its bar; records the bars from firstBar on.
void drawFigureLines(Canvas& canvas, DisplayState& st, const std::array<FigureLine, 5>& lines,
                     int textX, int textTop, int textWidth, int firstBar) {
    drawLcdPanel(canvas, st);
    for (int i = 0; i < 5; ++i) {
        drawTextBox(canvas, st, lines[i].text, {textX, textTop + 13 * i, textWidth, 15},
                    {.size = 14, .bold = true, .middle = true, .text = textColor(st)});
        st.barRects[firstBar + i] =
            drawBar(canvas, st, 17 + 13 * i, backColor(st), textColor(st), lines[i].fraction);
    }
}

} // namespace

void drawRatioPage(Canvas& canvas, DisplayState& st) {
    const std::array<int, 5> values{st.rawMIDI, st.rawMP3, st.rawTracker, st.rawFav, st.rawRadio};
    const std::array<const char*, 5> patterns{"MIDI: %.1f%%", "MP3: %.1f%%", "tracker: %.1f%%",
                                              "Favorite: %.1f%%", "Internet Radio: %.1f%%"};
    float sum = 0.0f;
    for (int value : values)
        sum += static_cast<float>(value);
    std::array<FigureLine, 5> lines;
    for (int i = 0; i < 5; ++i) {
        float share = static_cast<float>(values[i]) / sum * 100.0f;
        // All ratios at 0 share nothing: "nan", whatever sign the division left on it.
        if (std::isnan(share))
            share = std::numeric_limits<float>::quiet_NaN();
        lines[i] = {formatText(patterns[i], static_cast<double>(share)), values[i] / 100.0f};
    }
    drawFigureLines(canvas, st, lines, 15, 16, 150, 0);
}

void drawTimingPage(Canvas& canvas, DisplayState& st) {
    const std::array<FigureLine, 5> lines{{
        {formatText("Min (sec): %d", st.songPlayDurationMin), st.songPlayDurationMin / 600.0f},
        {formatText("Max (sec): %d", st.songPlayDurationMax), st.songPlayDurationMax / 600.0f},
        {formatText("iRado Min (sec): %d", st.iSongPlayDurationMin),
         st.iSongPlayDurationMin / 600.0f},
        {formatText("iRadio Max (sec): %d", st.iSongPlayDurationMax),
         st.iSongPlayDurationMax / 600.0f},
        {formatText("Fade (sec): %d", st.FADE_DURATION_MS / 1000), st.FADE_DURATION_MS / 20000.0f},
    }};
    drawFigureLines(canvas, st, lines, 10, 14, 200, 5);
}
