#pragma once

class QWidget;

// SIGINT, SIGTERM and SIGHUP close the window through its close box's path. The handler only
// writes a byte to a pipe; the event loop reads it and does the work.
void closeWindowOnQuitSignals(QWidget* window);

// The end of the desktop session (logout, power-off through the session manager) closes the
// window the same way, so that nothing since the start is lost with the session.
void closeWindowOnSessionEnd(QWidget* window);
