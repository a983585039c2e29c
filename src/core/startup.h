#pragma once
struct PlayerState;

// While the main window is being created, before anything is loaded: the version check.
void onMainWindowCreated(PlayerState& st);
// From the seeding of rand() to the game controllers, once the window exists.
void runEarlyStartup(PlayerState& st);
// From the library cache to the first song and the game's exchange files. Runs once, with the
// main window created and still invisible.
void runStartupSequence(PlayerState& st);
// hotkeyConfig.json from the data folder, else under its bare name, into hotkeyTable: at the
// start-up and at each opening of the Hotkey dialog. Neither opening leaves the table as it was.
void loadKeyBindings(PlayerState& st);
// The rows of the list page: the built-in stations, the stations, then one row per playlist.
void buildListEntries(PlayerState& st);
// The periodic timers of the main window, in their order: timers 2 and 3 as schedulePolling says.
void startMainTimers(PlayerState& st);
