#pragma once
#include <string>

struct PlayerState;

// Tells the game whether the player runs: "yes" at start-up, "no" as the last act of shutdown.
void writeMusicRunning(const PlayerState& st, const std::string& text);
