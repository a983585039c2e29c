#pragma once
#include <string>
#include <vector>

class Canvas;
struct DisplayState;

// What the pass read of the playing song, in whole seconds, and the volume the listener hears.
struct TimeReadings {
    int position = 0;
    int length = 0;
    int segmentEnd = 0;
    int left = 0; // to the segment's end
    float volume = 0.0f;
};

// The pages of the LCD; the pass draws the first that applies.
void drawFrontPage(Canvas& canvas, DisplayState& st, const TimeReadings& readings);
void drawListPage(Canvas& canvas, DisplayState& st);
void drawSearchPage(Canvas& canvas, DisplayState& st);
void drawRatioPage(Canvas& canvas, DisplayState& st);
void drawTimingPage(Canvas& canvas, DisplayState& st);

// A rounded panel in the LCD's look at a grid box: the LCD itself (2, 12, 490, 85) that the list
// and figures pages draw on, and the small panel under the title.
void drawLcdPanel(Canvas& canvas, const DisplayState& st, float x = 2, float y = 12,
                  float width = 490, float height = 85);
// Up to 10 cells, two in a row, from texts[first] on; records their rectangles.
void drawCells(Canvas& canvas, DisplayState& st, const std::vector<std::string>& texts,
               std::size_t first);

// One page forward (+1) or back (-1) through the list, the search results or the figures.
void scrollList(DisplayState& st, int delta);
// Home: closes the search page, else goes back to the front page, else on to the list of the
// radio, else back to the radio itself; always to the song pages.
void goHome(DisplayState& st);
// Opens the search page empty, leaving any walk through the history, or closes it.
void toggleSearchPage(DisplayState& st);
