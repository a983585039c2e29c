#include "core/playerState.h"
#include "core/songInfoTexts.h"
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
        drawTextBox(canvas, st, line.text, line.box,
                    {.size = 18,
                     .scaled = false,
                     .centered = line.centered,
                     .wrapped = !line.centered,
                     .text = {0, 0, 0}});
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
    auto* exit = new QPushButton("Exit", &window);
    exit->setObjectName("3007");
    exit->setGeometry(10, 240, 560, 35);
    QObject::connect(exit, &QPushButton::clicked, &window, &QWidget::close);
    auto* clear = new QPushButton("Clear Song History", &window);
    clear->setObjectName("3012");
    clear->setGeometry(350, 70, 160, 25);
    QObject::connect(clear, &QPushButton::clicked, &window, [&window, &st] {
        clearSongHistory(st);
        window.update();
    });
    window.paint = [&st](Canvas& canvas) { paintSongInfo(canvas, st); };
}
