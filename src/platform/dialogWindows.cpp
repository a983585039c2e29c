#include "platform/dialogWindows.h"

#include "platform/qtCanvas.h"

#include <QCloseEvent>
#include <QPainter>
#include <array>
#include <map>

namespace {

struct DialogSpec {
    int id;
    const char* title;
    int outerWidth;
    int outerHeight;
    bool fixedSize; // caption and close box only
};

constexpr std::array<DialogSpec, 9> dialogs{{
    {9, "Radio Option", 570, 320, true},
    {10, "Favorite Options", 540, 288, false},
    {11, "Hotkey Options", 700, 800, false},
    {12, "Song Information", 600, 330, false},
    {15, "Visual Options", 620, 490, false},
    {16, "Folder Information", 690, 700, false},
    {19, "About Marble Tunnel Radio", 710, 810, false},
    {22, "Internet Folder Information", 690, 650, false},
    {24, "Update Marble Tunnel", 460, 150, false},
}};

// The frame of a Windows window of the default theme: 8 pixels each side, 31 over the client
// area for the caption, 8 below.
constexpr int windowsFrameWidth = 16;
constexpr int windowsFrameHeight = 39;

std::map<int, DialogFiller>& fillers() {
    static std::map<int, DialogFiller> installed;
    return installed;
}

} // namespace

void DialogWindow::paintEvent(QPaintEvent*) {
    if (!paint)
        return;
    QPainter painter(this);
    QtCanvas canvas(painter, width(), height(), fonts_, nullptr);
    paint(canvas);
}

void DialogWindow::closeEvent(QCloseEvent* event) {
    if (closing)
        closing();
    closing = nullptr; // once, however the window is closed
    event->accept();
}

void installDialogFiller(int id, DialogFiller filler) {
    fillers()[id] = filler;
}

QSize dialogClientSize(int outerWidth, int outerHeight) {
    return QSize(outerWidth - windowsFrameWidth, outerHeight - windowsFrameHeight);
}

DialogWindow* openDialogWindow(QWidget* owner, int id, PlayerState& st) {
    for (const DialogSpec& spec : dialogs) {
        if (spec.id != id)
            continue;
        Qt::WindowFlags flags = Qt::Window;
        if (spec.fixedSize)
            flags |= Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint;
        auto* window = new DialogWindow(owner, flags);
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->setWindowTitle(spec.title);
        window->setAutoFillBackground(true);
        const QSize client = dialogClientSize(spec.outerWidth, spec.outerHeight);
        if (spec.fixedSize)
            window->setFixedSize(client);
        else
            window->resize(client);
        if (auto filler = fillers().find(id); filler != fillers().end())
            filler->second(*window, st);
        window->show();
        return window;
    }
    return nullptr;
}
