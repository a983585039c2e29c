#pragma once
#include <QSize>

class QWidget;

// The client size of a dialog whose outer size the tables give for a Windows frame: its controls
// were laid out inside that client area, and here the window manager draws a frame of its own
// around it.
QSize dialogClientSize(int outerWidth, int outerHeight);

// A new, empty window of the option dialog with this command id, owned by the main window (in
// front of it, gone with it), shown at once and deleted when closed; each call makes another.
// Null for an id that opens no dialog.
QWidget* openDialogWindow(QWidget* owner, int id);
