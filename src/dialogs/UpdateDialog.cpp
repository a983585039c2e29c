#include "core/hostPort.h"
#include "core/playerState.h"
#include "dialogs/controls.h"
#include "dialogs/dialogs.h"
#include "display/panels.h"
#include "platform/dialogWindows.h"
#include "update/versionCheck.h"

#include <QCheckBox>
#include <QPushButton>

namespace {

// Every paint asks the web site again, so the window shows what it offers now.
void paintUpdate(Canvas& canvas, const PlayerState& st) {
    std::string latest;
    const bool newer = checkForNewVersion(st.versionServer, latest);
    // Scaled as the main window is, straight over the window's own client pixels.
    drawTextBox(canvas, st, updateText(newer, latest), {10, 10, 400, 80},
                {.size = 18, .scaled = true, .wrapped = true});
}

} // namespace

// What the web site offers, its download page, and the way to stop the check.
void fillUpdateDialog(DialogWindow& window, PlayerState& st) {
    QPushButton* downloads = makeButton(&window, 3013, "Go To Downloads Page", {10, 30, 400, 25});
    QCheckBox* noCheck = makeCheckBox(&window, 3014, "Do not check for updates", {10, 70, 200, 25});
    QPushButton* exit = makeButton(&window, 3007, "Exit", {235, 70, 175, 25});
    // Opaque controls: a hovered one repaints alone, not the window under it, whose paint
    // would make a request each time.
    for (QWidget* control : {static_cast<QWidget*>(downloads), static_cast<QWidget*>(noCheck),
                             static_cast<QWidget*>(exit)})
        control->setAutoFillBackground(true);

    QObject::connect(downloads, &QPushButton::clicked, &window,
                     [] { host::openUrl(downloadsPageAddress()); });
    // The box turns the check off and never stays ticked: each click ends with the tick the
    // click did not leave. It is not set from versionCheck at opening.
    QObject::connect(noCheck, &QCheckBox::clicked, &window, [&st, noCheck] {
        st.versionCheck = false;
        noCheck->setChecked(!noCheck->isChecked());
    });
    QObject::connect(exit, &QPushButton::clicked, &window, &QWidget::close);
    window.paint = [&st](Canvas& canvas) { paintUpdate(canvas, st); };
}
