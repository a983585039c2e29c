#pragma once
#include <string>

struct GameLinkState;

// Tells the game whether the player runs: "yes" at start-up, "no" as the last act of shutdown.
void writeMusicRunning(const GameLinkState& st, const std::string& text);

// The game link's share of the 30 ms tick: the game's commands read and run, then what plays
// taken and written back for the game.
void readCommandFile(GameLinkState& st);
void snapshotSongInfo(GameLinkState& st);
void writeSongInfo(const GameLinkState& st);
