#include "display/canvas.h"
#include "display/displayState.h"
#include "display/pages.h"
#include "display/palette.h"
#include "display/panels.h"
#include "library/model.h"

void drawSearchPage(Canvas& canvas, DisplayState& st) {
    const char* prompt = nullptr;
    if (st.searchText.empty() || st.searchText.front() == ' ')
        prompt = "Type in a song name.";
    else if (st.searchResults.empty())
        prompt = "No song found.";
    if (prompt) {
        drawFittedPanel(canvas, st, prompt, {2, 12, 490, 85}, 26, false, textColor(st),
                        textColor(st), lcdColor(st));
        return;
    }
    drawLcdPanel(canvas, st);
    // Only the shown page's titles are made: a search may find most of the library.
    const std::size_t first = static_cast<std::size_t>(st.listPage + 1) * 10;
    std::vector<std::string> titles;
    for (std::size_t i = first; i < first + 10 && i < st.searchResults.size(); ++i)
        if (const Song* song = findSong(st, st.searchResults[i]))
            titles.push_back(titleFromPath(song->songPath));
    drawCells(canvas, st, titles, 0);
}
