#include "display/canvas.h"
#include "display/displayState.h"
#include "display/layout.h"
#include "display/pages.h"
#include "display/palette.h"
#include "display/panels.h"
#include "display/pathLine.h"
#include "input/search.h"

#include <algorithm>

void drawLcdPanel(Canvas& canvas, const DisplayState& st, float x, float y, float width,
                  float height) {
    drawRoundedPanel(canvas, st, gridBox(st, x, y, width, height), static_cast<int>(20 * st.scaleX),
                     textColor(st), static_cast<int>(st.scaleX), lcdColor(st), st.textureAlpha);
}

void drawCells(Canvas& canvas, DisplayState& st, const std::vector<std::string>& texts,
               std::size_t first) {
    for (std::size_t i = 0; i < st.cellRects.size() && first + i < texts.size(); ++i) {
        const int row = static_cast<int>(i / 2);
        const int column = static_cast<int>(i % 2);
        st.cellRects[i] =
            drawCell(canvas, st, texts[first + i], {13 + 234 * column, 15 + 14 * row, 232, 12},
                     st.textureAlpha, textColor(st), lcdColor(st), textColor(st));
    }
}

void drawListPage(Canvas& canvas, DisplayState& st) {
    drawLcdPanel(canvas, st);
    // The headline of the title box follows the song even while the list is on show.
    displayPath(st, st.songFilePath, st.currentMusicType);
    if (st.listPage >= 0)
        drawCells(canvas, st, st.listEntries, static_cast<std::size_t>(st.listPage) * 10);
}

void scrollList(DisplayState& st, int delta) {
    st.lcdDirty = true;
    int lastPage = 0;
    if (st.searchActive)
        lastPage = (static_cast<int>(st.searchResults.size()) + 9) / 10 - 1;
    else if (st.listKind != 1)
        lastPage = (st.stationCount + 3 + st.playlistCount + 9) / 10 - 1;
    st.listPage = std::max(-1, std::min(st.listPage + delta, lastPage));
}

void goHome(DisplayState& st) {
    if (st.searchActive) {
        st.searchActive = false;
        st.searchResults.clear();
        st.searchText.clear();
        st.listPage = -1;
    } else if (st.listPage != -1) {
        st.listPage = -1;
    } else if (st.listKind == 0 && st.stationMode == stationModeRadio) {
        st.listPage = 0;
    } else {
        st.stationMode = stationModeRadio;
        st.listPage = -1;
    }
    st.listKind = 0;
    st.lcdDirty = true;
}

void toggleSearchPage(DisplayState& st) {
    st.lcdDirty = true;
    if (st.searchActive) {
        st.searchActive = false;
        st.listPage = -1;
        return;
    }
    st.searchResults.clear();
    st.searchText.clear();
    st.searchActive = true;
    prepareSongSearch(st);
    if (st.historyNavigation != historyWalkOff) {
        st.historyNavigation = historyWalkOff;
        st.historyPosition = st.historyEnd;
    }
}
