#pragma once
struct PlayerState;

// The start's version check, asked for while the main window is being created, before anything
// is loaded, so `asked` is versionCheck's default there: a stored false does not stop it. It is
// made once the first song plays, as the request holds the thread for up to 5 s.
void checkVersionAtStart(PlayerState& st, bool asked);
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
