#pragma once
#include <string>

struct GameCommand;
struct PlayerState;

// A line of the game's command file with its full effect, on the user-interface thread; a
// transition it starts runs at once. A line that does not parse does nothing and says nothing.
void runCommandLine(PlayerState& st, const std::string& line);
void runGameCommand(PlayerState& st, const GameCommand& command);
// Takes every line of commands.txt and runs them in file order.
void runGameCommands(PlayerState& st);
