#include "core/favoriteOptions.h"
#include "core/playerState.h"
#include "core/radioOptions.h"
#include "dialogs/controls.h"
#include "dialogs/dialogs.h"
#include "display/panels.h"
#include "library/favorites.h"
#include "platform/dialogWindows.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

namespace {

const char* const aboutFavoriteCount =
    "The Favorite Count lets you multiply how often this song appears in your playlists and "
    "recommendations. Setting it to 10 is like having 10 copies of the song, while 100 acts like "
    "100 copies. The higher the count, the more frequently this song will be prioritized for you.";

void paintFavoriteOptions(Canvas& canvas, const PlayerState& st) {
    drawTextBox(canvas, st, favoriteOptionsTitle(st), {10, 12, 470, 50},
                {.size = 20, .scaled = false, .wrapped = true});
    drawTextBox(canvas, st, "Favorite Count:", {10, 80, 250, 20}, {.size = 18, .scaled = false});
    drawTextBox(canvas, st, aboutFavoriteCount, {10, 160, 470, 80},
                {.size = 16, .scaled = false, .wrapped = true});
}

} // namespace

// The favourite count of what is playing, followed from song to song by the dialog's own tick;
// the filter of the three built-in stations; the wipe of every favourite.
void fillFavoriteOptionsDialog(DialogWindow& window, PlayerState& st) {
    QLineEdit* count =
        makeSpinField(&window, 1015, {130, 80, 80, 20}, playingFavoriteCount(st), 1000,
                      [&window, &st](const QString& text) {
                          setPlayingFavoriteCount(st, radioOptionNumber(text.toStdString()));
                          window.update();
                      });
    QPushButton* filter = makeButton(&window, 1100, "All Songs", {300, 75, 150, 30});
    filter->setDefault(true);
    QObject::connect(filter, &QPushButton::clicked, &window, [&window, &st, filter] {
        cycleBuiltInFilter(st);
        filter->setText(builtInFilterName(st.builtInStation));
        window.update();
    });
    QObject::connect(makeButton(&window, 3011, "Clear All Favorites", {20, 110, 200, 30}),
                     &QPushButton::clicked, &window, [&window, &st] {
                         clearAllFavorites(st);
                         window.update();
                     });
    QObject::connect(makeButton(&window, 3007, "Exit", {300, 110, 150, 30}), &QPushButton::clicked,
                     &window, &QWidget::close);

    // While a station plays the count is left as the user typed it.
    auto* tick = new QTimer(&window); // stops with the window
    QObject::connect(tick, &QTimer::timeout, &window, [&window, &st, count] {
        if (!st.onStation) {
            const std::optional<int> now = playingFavoriteCount(st);
            const QString text = now ? QString::number(*now) : QString();
            if (count->text() != text)
                count->setText(text);
        }
        window.update();
    });
    tick->start(1000);
    window.paint = [&st](Canvas& canvas) { paintFavoriteOptions(canvas, st); };
}
