#pragma once

struct GameLinkState;

// Starts the companion game from its folder, detached; the music goes on. False when it could
// not be started.
bool launchGame(GameLinkState& st);
