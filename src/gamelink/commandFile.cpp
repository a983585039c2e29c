#include "gamelink/commandFile.h"

#include "core/playerState.h"

// The game link's files come with the command file protocol.
void writeMusicRunning(const PlayerState&, const std::string&) {}
