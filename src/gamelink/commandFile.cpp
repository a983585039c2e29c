#include "gamelink/commandFile.h"

#include "gamelink/gameLinkState.h"

// The game link's files come with the command file protocol.
void writeMusicRunning(const GameLinkState&, const std::string&) {}
void readCommandFile(GameLinkState&) {}
void snapshotSongInfo(GameLinkState&) {}
void writeSongInfo(const GameLinkState&) {}
