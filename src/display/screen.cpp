#include "display/screen.h"

#include "display/bars.h"
#include "display/canvas.h"
#include "display/displayState.h"
#include "display/glyphs.h"
#include "display/layout.h"
#include "display/pages.h"
#include "display/palette.h"
#include "display/panels.h"
#include "input/keyNames.h"
#include "library/model.h"
#include "playback/engine/engine.h"
#include "radio/segments.h"
#include "util/textFormat.h"

#include <algorithm>

namespace {

void drawBackground(Canvas& canvas, const DisplayState& st) {
    canvas.fillRect({0, 0, canvas.width(), canvas.height()}, backColor(st));
    const int bitmap = st.textureSlots[backgroundSlot].id;
    if (bitmap != 0 && st.bkTextureAlpha != 0)
        canvas.tileBitmap(bitmap, {0, 0, canvas.width(), canvas.height()}, st.bkTextureAlpha,
                          TileEdge::Clip);
}

TimeReadings readTimes(DisplayState& st) {
    refreshPosition(st);
    TimeReadings t;
    if (!channelGetVolume(st.activeHandle, t.volume))
        t.volume = 0.0f;
    t.position = static_cast<int>(st.positionSeconds);
    t.length = static_cast<int>(st.lengthSeconds);
    t.segmentEnd = static_cast<int>(st.segmentEnd);
    t.left = static_cast<int>(st.segmentEnd - st.positionSeconds);
    return t;
}

void drawPage(Canvas& canvas, DisplayState& st, const TimeReadings& readings) {
    if (st.searchActive)
        drawSearchPage(canvas, st);
    else if (st.listKind == 1 && st.listPage == -1)
        drawRatioPage(canvas, st);
    else if (st.listKind == 1)
        drawTimingPage(canvas, st);
    else if (st.listPage == -1)
        drawFrontPage(canvas, st, readings);
    else
        drawListPage(canvas, st);
}

// A glyph whose rectangle is recorded as a square of 15 x minScale at its grid place.
void drawSquareControl(Canvas& canvas, DisplayState& st, int index, int code, int x) {
    drawGlyph(canvas, st, code, {x, 135, 15, 10}, 15, textColor(st));
    const int side = static_cast<int>(15 * minScale(st));
    st.controlRects[index] = {gridX(st, x), gridY(st, 135), side, side};
}

Box drawRoundControl(Canvas& canvas, const DisplayState& st, int code, int x, int y, Color a,
                     Color b) {
    const int diameter = static_cast<int>(20 * minScale(st));
    return drawCircleGlyph(canvas, code, gridX(st, x), gridY(st, y), diameter, a, b,
                           static_cast<int>(minScale(st)));
}

// The playlist kind: songs or radio, every station as radio; none without a song on show.
std::optional<int> playlistKindGlyph(const DisplayState& st) {
    if (st.onStation)
        return glyph::playlistRadio;
    if (st.totalSongCount <= 0 || st.libraryEditInProgress)
        return std::nullopt;
    const Playlist* playlist = findPlaylist(st, st.playingPlaylist);
    return playlist && playlist->iRadioMode != 0 ? glyph::playlistRadio : glyph::playlistSongs;
}

// A controller symbol in its maker's colour.
Color controllerColor(const DisplayState& st, int slot) {
    switch (controllerFamily(st.controllerNames[slot])) {
    case ControllerFamily::Xbox:
        return {16, 124, 16};
    case ControllerFamily::PlayStation:
        return {0, 56, 135};
    case ControllerFamily::Generic:
        break;
    }
    return textColor(st);
}

void drawTransportRow(Canvas& canvas, DisplayState& st) {
    const Color text = textColor(st);
    drawSquareControl(canvas, st, 0, glyph::playPause, 246);
    drawSquareControl(canvas, st, 1, glyph::nextSong, 263);
    drawSquareControl(canvas, st, 2, glyph::previousSong, 212);
    if (st.shuffle == 0)
        drawGlyph(canvas, st, glyph::shuffleOff, {229, 135, 15, 10}, 15, text);
    drawSquareControl(canvas, st, 3, glyph::shuffle, 229);
    st.controlRects[4] =
        drawRoundControl(canvas, st, glyph::previousPlaylist, 75, 115, lcdColor(st), text);
    st.controlRects[5] =
        drawRoundControl(canvas, st, glyph::nextPlaylist, 405, 115, lcdColor(st), text);
    st.controlRects[13] = drawGlyph(canvas, st, glyph::lamp, {95, 125, 15, 10}, 10, text);
    st.controlRects[14] = drawGlyph(canvas, st, glyph::search, {370, 125, 15, 10}, 10, text);
    const std::optional<int> kind = playlistKindGlyph(st);
    if (kind)
        st.controlRects[6] = drawGlyph(canvas, st, *kind, {368, 106, 15, 10}, 15, text);
    const int controllers = std::min(st.controllerCount, static_cast<int>(maxControllers));
    for (int i = 0; i < controllers; ++i) {
        const int x = 368 - 20 * (kind ? 1 : 0) - 20 * i;
        st.controllerRects[i] =
            drawGlyph(canvas, st, glyph::controller, {x, 106, 15, 10}, 15, controllerColor(st, i));
    }
}

std::string frequencyText(const DisplayState& st) {
    const double step = 11.3 / (st.playlistCount + 3);
    double value = 100.0;
    if (st.stationMode == 0)
        value = 88.7 + st.playingPlaylist * step;
    else if (st.stationMode >= 1 && st.stationMode <= 3)
        value = 100.0 - (4 - st.stationMode) * step;
    else if (st.stationMode == 4 && st.stationCount > 0)
        value = 100.0 + st.playingPlaylist * (6.0 / st.stationCount);
    return formatText("%.1f", value);
}

void drawPageRow(Canvas& canvas, DisplayState& st) {
    const Color text = textColor(st);
    st.controlRects[8] = drawGlyph(canvas, st, glyph::pageBack, {150, 85, 15, 10}, 15, text);
    st.controlRects[9] = drawGlyph(canvas, st, glyph::home, {240, 85, 15, 10}, 15, text);
    st.controlRects[10] = drawGlyph(canvas, st, glyph::pageForward, {330, 85, 15, 10}, 15, text);
    if (st.listKind == 1 || st.listPage == -1)
        st.controlRects[11] = drawGlyph(canvas, st, glyph::figures, {467, 15, 18, 10}, 15, text);
    st.controlRects[12] = drawRoundControl(canvas, st, glyph::power, 485, 140, text, lcdColor(st));
}

} // namespace

void paintScreen(Canvas& canvas, DisplayState& st) {
    drawBackground(canvas, st);
    const TimeReadings readings = readTimes(st);
    drawPage(canvas, st, readings);
    drawPositionBar(canvas, st);
    drawVolumeBar(canvas, st);
    drawLcdPanel(canvas, st, 195, 120, 100, tall(st) ? 28 : 30);
    drawFittedPanel(canvas, st, st.searchActive ? st.searchText : st.lcdTitle, {90, 105, 300, 30},
                    15, true, textColor(st), textColor(st), lcdColor(st));
    drawTransportRow(canvas, st);
    drawTextBox(canvas, st, frequencyText(st), {95, 108, 100, 28},
                {.size = 13, .wrapped = true, .text = textColor(st)});
    if (st.searchActive) {
        drawTextBox(canvas, st,
                    formatText("Songs found %d", static_cast<int>(st.searchResults.size())),
                    {90, 126, 300, 28},
                    {.size = 12, .centered = true, .wrapped = true, .text = textColor(st)});
    }
    drawPageRow(canvas, st);
}
