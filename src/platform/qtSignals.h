#pragma once

class QWidget;

// SIGINT, SIGTERM and SIGHUP close the window through its close box's path. The handler only
// writes a byte to a pipe; the event loop reads it and does the work.
void closeWindowOnQuitSignals(QWidget* window);
