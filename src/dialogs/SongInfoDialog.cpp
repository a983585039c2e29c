#include "core/playerState.h"
#include "core/songInfoTexts.h"
#include "dialogs/controls.h"
#include "dialogs/dialogs.h"
#include "display/panels.h"
#include "library/history.h"
#include "library/model.h"
#include "platform/dialogWindows.h"

#include <QPushButton>
#include <QTimer>

namespace {

void paintSongInfo(Canvas& canvas, const PlayerState& st) {
    for (const SongInfoLine& line : songInfoLines(st))
        drawTextBox(
            canvas, st, line.text, line.box,
            {.size = 18, .scaled = false, .centered = line.centered, .wrapped = !line.centered});
}

} // namespace

// The library's figures, the history, the soundfont and the song on show; repainted when the
// player says something on show changed, looked at ten times a second.
void fillSongInfoDialog(DialogWindow& window, PlayerState& st) {
    recountLibrary(st);
    auto* tick = new QTimer(&window); // stops with the window
    QObject::connect(tick, &QTimer::timeout, &window, [&window, &st] {
        if (takeSongInfoChange(st))
            window.update();
    });
    tick->start(100);
    QObject::connect(makeButton(&window, 3007, "Exit", {10, 240, 560, 35}), &QPushButton::clicked,
                     &window, &QWidget::close);
    QObject::connect(makeButton(&window, 3012, "Clear Song History", {350, 70, 160, 25}),
                     &QPushButton::clicked, &window, [&window, &st] {
                         clearSongHistory(st);
                         window.update();
                     });
    window.paint = [&st](Canvas& canvas) { paintSongInfo(canvas, st); };
}
