#include "core/aboutTexts.h"
#include "core/hostPort.h"
#include "core/playerState.h"
#include "dialogs/controls.h"
#include "dialogs/dialogs.h"
#include "display/panels.h"
#include "library/model.h"
#include "platform/dialogWindows.h"

#include <QPushButton>

namespace {

void paintAbout(Canvas& canvas, const PlayerState& st) {
    const TextBoxStyle style{.size = 18, .scaled = false, .wrapped = true};
    drawTextBox(canvas, st, aboutFirstText, {5, 5, 680, 600}, style);
    drawTextBox(canvas, st, aboutSecondText, {5, 575, 680, 600}, style);
}

} // namespace

// Two paragraphs about the program, the maker's links and Exit.
void fillAboutDialog(DialogWindow& window, PlayerState& st) {
    recountLibrary(st);
    int y = 430;
    for (const AboutLink& link : aboutLinks()) {
        QObject::connect(
            makeButton(&window, link.id, QString::fromStdString(link.label), {15, y, 350, 25}),
            &QPushButton::clicked, &window, [address = link.address] { host::openUrl(address); });
        y += 35;
    }
    QObject::connect(makeButton(&window, 8006, "Exit", {10, 722, 670, 35}), &QPushButton::clicked,
                     &window, &QWidget::close);
    window.paint = [&st](Canvas& canvas) { paintAbout(canvas, st); };
}
