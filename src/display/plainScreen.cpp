#include "display/plainScreen.h"

#include "display/canvas.h"
#include "display/displayState.h"

void paintPlainScreen(DisplayState& st, Canvas& canvas) {
    const int w = canvas.width();
    const int h = canvas.height();
    const Color text = colorOf(st.textR, st.textG, st.textB);
    canvas.fillRect({0, 0, w, h}, colorOf(st.bkGrR, st.bkGrG, st.bkGrB));

    const Box lcd{static_cast<int>(10 * st.scaleX), static_cast<int>(10 * st.scaleY),
                  static_cast<int>(480 * st.scaleX), static_cast<int>(80 * st.scaleY)};
    canvas.fillRect(lcd, colorOf(st.songR, st.songG, st.songB));

    const int lineHeight = lcd.height / 3;
    std::string headline = st.lcdTitle.empty() ? st.builtInStationNames[0] : st.lcdTitle;
    std::string title = st.songTitle;
    if (st.totalSongCount <= 0) {
        headline = "Marble Tunnel Radio: No Music Directory";
        title = "Add music to the library";
    }
    canvas.drawText({lcd.x + 8, lcd.y + 4, lcd.width - 16, lineHeight}, headline,
                    {{"Arial", lineHeight * 2 / 3, 400}, text, TextAlign::Left, true, false});
    canvas.drawText({lcd.x + 8, lcd.y + lineHeight + 4, lcd.width - 16, lineHeight * 2 - 8}, title,
                    {{"Arial", lineHeight, 400}, text, TextAlign::Center, true, false});
}
