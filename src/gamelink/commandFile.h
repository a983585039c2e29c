#pragma once
#include <string>

struct GameLinkState;

// Tells the game whether the player runs: "yes" at start-up, "no" as the last act of shutdown.
void writeMusicRunning(const GameLinkState& st, const std::string& text);
