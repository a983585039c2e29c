#pragma once

struct GameLinkState;

// Starts the companion game, marbleTunnelPath + "/Marble Tunnel", in its own folder and its own
// session, and returns while it runs; a detached thread collects its exit and nothing else. The
// caller writes the exchange files first. Does nothing when marbleTunnelPath is empty. False,
// with one line "Error launching the game: ..." on the error stream, when it could not be started.
bool launchGame(GameLinkState& st);
