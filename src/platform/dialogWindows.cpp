#include "platform/dialogWindows.h"

#include <QWidget>
#include <array>

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

} // namespace

QSize dialogClientSize(int outerWidth, int outerHeight) {
    return QSize(outerWidth - windowsFrameWidth, outerHeight - windowsFrameHeight);
}

QWidget* openDialogWindow(QWidget* owner, int id) {
    for (const DialogSpec& spec : dialogs) {
        if (spec.id != id)
            continue;
        // A plain window rather than a QDialog: Escape and Enter close or press nothing here.
        Qt::WindowFlags flags = Qt::Window;
        if (spec.fixedSize)
            flags |= Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint;
        auto* window = new QWidget(owner, flags);
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->setWindowTitle(spec.title);
        window->setAutoFillBackground(true);
        const QSize client = dialogClientSize(spec.outerWidth, spec.outerHeight);
        if (spec.fixedSize)
            window->setFixedSize(client);
        else
            window->resize(client);
        window->show();
        return window;
    }
    return nullptr;
}
