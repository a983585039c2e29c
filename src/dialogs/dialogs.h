#pragma once

class DialogWindow;
struct PlayerState;

// Makes each option dialog fill the windows that the menu opens for it; once, before the main
// window runs.
void installDialogs();

// The dialogs, each filling a new window of its own.
void fillRadioOptionDialog(DialogWindow& window, PlayerState& st);
void fillAboutDialog(DialogWindow& window, PlayerState& st);
void fillSongInfoDialog(DialogWindow& window, PlayerState& st);
void fillFavoriteOptionsDialog(DialogWindow& window, PlayerState& st);
void fillFolderDialog(DialogWindow& window, PlayerState& st);
void fillStationsDialog(DialogWindow& window, PlayerState& st);
void fillUpdateDialog(DialogWindow& window, PlayerState& st);
void fillHotkeyDialog(DialogWindow& window, PlayerState& st);
void fillVisualDialog(DialogWindow& window, PlayerState& st);
