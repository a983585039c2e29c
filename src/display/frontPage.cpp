#include "display/canvas.h"
#include "display/displayState.h"
#include "display/glyphs.h"
#include "display/layout.h"
#include "display/pages.h"
#include "display/palette.h"
#include "display/panels.h"
#include "display/pathLine.h"
#include "library/model.h"
#include "util/textFormat.h"

namespace {

bool volumeShown(const DisplayState& st) {
    return st.volumeUpLatch || st.volumeDownLatch || st.volumeTextShown;
}

std::string headline(const DisplayState& st) {
    const double volume = st.volume;
    if (st.onStation)
        return volumeShown(st) ? formatText("%.2f", volume) : st.streamTitle;
    if (st.totalSongCount < 1)
        return "Add music to the library";
    if (!volumeShown(st))
        return st.songTitle;
    if (st.volumeToggleState == volumeToggleHigh)
        return formatText("High Vol: %.2f", volume);
    if (st.volumeToggleState == volumeToggleLow)
        return formatText("Low Vol: %.2f", volume);
    return formatText("Current Vol: %.2f", volume);
}

// The volume headline lasts while it changes and 3 seconds after; the window arms the timer.
void keepVolumeHeadline(DisplayState& st) {
    st.lcdDirty = true;
    if (!st.volumeTimerArmed) {
        st.volumeTimerArmed = true;
        st.volumeTimerWanted = true;
    }
}

const Song* playingSongOf(const DisplayState& st) {
    return findSong(st, {st.playingPlaylist, st.playingSong});
}

// Its place mixes truncated and exact grid terms, as the heart always stood.
void drawFrontHeart(Canvas& canvas, DisplayState& st) {
    if (st.libraryEditInProgress)
        return;
    const int x = static_cast<int>(5 * st.scaleX + gridX(st, 2));
    const float lift = (tall(st) ? 18 : 22) * st.scaleY;
    const int y = static_cast<int>(gridY(st, 12) + gridY(st, 85) - lift);
    if (st.onStation) {
        const RadioStation* station = findStation(st, st.currentStation);
        const int count = station ? station->favoriteCount : 0;
        st.heartRects[1] = drawHeart(canvas, st, x, y, count, textColor(st));
    } else if (st.totalSongCount > 0) {
        const Song* song = playingSongOf(st);
        const int count = song ? song->favoriteCount : 0;
        st.heartRects[0] = drawHeart(canvas, st, x, y, count, textColor(st));
    }
}

std::string timeLine(const DisplayState& st, const TimeReadings& t) {
    if (st.onStation)
        return formatText("Time: %02d:%02d  Fade Out in: %02d:%02d | %02d:%02d Vol: %.2f",
                          t.position / 60, t.position % 60, t.left / 60, t.left % 60,
                          t.segmentEnd / 60, t.segmentEnd % 60, static_cast<double>(t.volume));
    if (st.totalSongCount > 0 && !st.libraryEditInProgress) {
        const Song* song = playingSongOf(st);
        return formatText(
            "Time: %02d:%02d / %02d:%02d  Fade Out: %02d:%02d | %02d:%02d  Play Count: "
            "%d Vol: %.2f",
            t.position / 60, t.position % 60, t.length / 60, t.length % 60, t.left / 60,
            t.left % 60, t.segmentEnd / 60, t.segmentEnd % 60, song ? song->playCount : 0,
            static_cast<double>(t.volume));
    }
    return "";
}

int volumeGlyph(const DisplayState& st) {
    if (st.volumeToggleState == volumeToggleHigh)
        return glyph::volumeHigh;
    if (st.volumeToggleState == volumeToggleLow)
        return glyph::volumeLow;
    return glyph::volume;
}

} // namespace

void drawFrontPage(Canvas& canvas, DisplayState& st, const TimeReadings& readings) {
    const std::string title = headline(st);
    if (volumeShown(st) && (st.onStation || st.totalSongCount >= 1))
        keepVolumeHeadline(st);
    drawFittedPanel(canvas, st, title, {2, 12, 490, 85}, 26, false, textColor(st), textColor(st),
                    lcdColor(st));
    const std::string path = displayPath(st, st.songFilePath, st.currentMusicType);
    drawTextBox(canvas, st, path, {9, 14, 465, 50},
                {.size = 16, .wrapped = true, .text = textColor(st)});
    drawFrontHeart(canvas, st);
    if (tall(st) || st.totalSongCount > 0)
        drawTextBox(canvas, st, timeLine(st, readings), {2, tall(st) ? 74 : 69, 490, 50},
                    {.size = 14, .centered = true, .wrapped = true, .text = textColor(st)});
    st.controlRects[7] =
        drawGlyph(canvas, st, volumeGlyph(st), {470, 82, 15, 10}, 20, textColor(st));
}
