#pragma once

struct PlayerState;

// Asks the web server for the newest version and opens the Update dialog if there is one.
void runStartupVersionCheck(PlayerState& st);
