#pragma once

class QMainWindow;
struct PlayerState;

// The menu bar of the main window: seven menus whose entries run the menu's commands. Built once,
// before the window shows; the bar takes its height out of the window's client area.
void createMenus(QMainWindow& window, PlayerState& st);
