#include "core/playerState.h"
#include "core/radioOptions.h"
#include "dialogs/controls.h"
#include "dialogs/dialogs.h"
#include "display/panels.h"
#include "platform/dialogWindows.h"
#include "playback/levelling.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>

namespace {

constexpr int labelHeight = 20;
constexpr int labelSize = 16;
const char* const aboutRadioMode =
    "Radio Mode allows you to set custom playback ratios for MIDI, MP3, Tracker, and Favorite "
    "songs. Adjust the minimum and maximum duration to play randomized song segments with a "
    "smooth crossfade transition between tracks.";

int labelX(const RadioOptionRow& row) {
    return row.editX == 200 ? 10 : 280;
}

void paintRadioOptions(Canvas& canvas, const PlayerState& st) {
    for (const RadioOptionRow& row : radioOptionRows)
        drawTextBox(canvas, st, radioOptionLabel(st, row),
                    {labelX(row), row.y, row.editX - labelX(row), labelHeight},
                    {.size = labelSize, .scaled = false, .middle = true});
    drawTextBox(canvas, st, aboutRadioMode, {10, 220, 530, 100},
                {.size = labelSize, .scaled = false, .wrapped = true});
}

int numberIn(const DialogWindow& window, int editId) {
    const auto* edit = window.findChild<QLineEdit*>(QString::number(editId));
    return edit ? radioOptionNumber(edit->text().toStdString()) : 0;
}

} // namespace

// The numbers of Radio Mode, edited live: each change is the setting's at once, but for the
// crossfade, which the closing sets with the six fields read again.
void fillRadioOptionDialog(DialogWindow& window, PlayerState& st) {
    for (const RadioOptionRow& row : radioOptionRows) {
        const int editId = row.editId;
        makeSpinField(&window, editId, {row.editX, row.y, 50, 20}, radioOptionOpening(st, row),
                      row.maximum, [&window, &st, editId](const QString& text) {
                          changeRadioOption(st, editId, radioOptionNumber(text.toStdString()));
                          window.update();
                      });
    }
    QObject::connect(makeButton(&window, 3007, "Exit", {280, 187, 250, 30}), &QPushButton::clicked,
                     &window, &QWidget::close);
    // Loudness levelling sits in the free place left of "Exit"; it takes effect at once.
    QCheckBox* level =
        makeCheckBox(&window, levellingCheckBoxId, "Level loudness (EBU R128)", {10, 190, 260, 24});
    level->setChecked(st.loudness.enabled);
    QObject::connect(level, &QCheckBox::toggled, &window, [&st](bool on) { setLevelling(st, on); });
    window.paint = [&st](Canvas& canvas) { paintRadioOptions(canvas, st); };
    window.closing = [&window, &st] {
        closeRadioOptions(st,
                          {numberIn(window, 1001), numberIn(window, 1003), numberIn(window, 1005),
                           numberIn(window, 1007), numberIn(window, 1009), numberIn(window, 1011),
                           numberIn(window, crossFadeEditId)});
    };
}
