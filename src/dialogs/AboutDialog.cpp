#include "core/aboutTexts.h"
#include "core/hostPort.h"
#include "core/playerState.h"
#include "dialogs/dialogs.h"
#include "display/panels.h"
#include "library/model.h"
#include "platform/dialogWindows.h"

#include <QPushButton>

namespace {

void paintAbout(Canvas& canvas, const PlayerState& st) {
    const TextBoxStyle style{.size = 18, .scaled = false, .wrapped = true, .text = {0, 0, 0}};
    drawTextBox(canvas, st, aboutFirstText, {5, 5, 680, 600}, style);
    drawTextBox(canvas, st, aboutSecondText, {5, 575, 680, 600}, style);
}

QPushButton* button(DialogWindow& window, int id, const std::string& label, QRect place) {
    auto* made = new QPushButton(QString::fromStdString(label), &window);
    made->setObjectName(QString::number(id));
    made->setGeometry(place);
    return made;
}

} // namespace

// Two paragraphs about the program, the maker's links and Exit.
void fillAboutDialog(DialogWindow& window, PlayerState& st) {
    recountLibrary(st);
    int y = 430;
    for (const AboutLink& link : aboutLinks()) {
        QObject::connect(button(window, link.id, link.label, {15, y, 350, 25}),
                         &QPushButton::clicked, &window,
                         [address = link.address] { host::openUrl(address); });
        y += 35;
    }
    QObject::connect(button(window, 8006, "Exit", {10, 722, 670, 35}), &QPushButton::clicked,
                     &window, &QWidget::close);
    window.paint = [&st](Canvas& canvas) { paintAbout(canvas, st); };
}
