#pragma once
#include "platform/qtFonts.h"

#include <QSize>
#include <QWidget>
#include <functional>

class Canvas;
struct PlayerState;

// The client size of a dialog whose outer size the tables give for a Windows frame: its controls
// were laid out inside that client area, and here the window manager draws a frame of its own
// around it.
QSize dialogClientSize(int outerWidth, int outerHeight);

// A window of an option dialog: a plain window rather than a QDialog, so that Escape and Enter
// close or press nothing. Its texts are painted through the canvas by whoever fills it, and its
// closing, by the close box or by a button, runs one hook.
class DialogWindow : public QWidget {
  public:
    DialogWindow(QWidget* owner, Qt::WindowFlags flags) : QWidget(owner, flags) {}
    std::function<void(Canvas&)> paint;
    std::function<void()> closing;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    FontCache fonts_;
};

// What a dialog puts into its new window: its controls and hooks, over the player's state.
using DialogFiller = void (*)(DialogWindow& window, PlayerState& st);
void installDialogFiller(int id, DialogFiller filler);

// A new window of the option dialog with this command id, owned by the main window (in front of
// it, gone with it), filled by its dialog if one is installed, shown at once and deleted when
// closed; each call makes another. Null for an id that opens no dialog.
DialogWindow* openDialogWindow(QWidget* owner, int id, PlayerState& st);
