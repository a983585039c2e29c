#pragma once
#include "display/displayState.h"
#include "gamelink/songInfo.h"
#include "util/plainFile.h"

#include <string>

// The companion game's folder, where every exchange file lies; empty turns the link off.
struct GameLinkState : DisplayState {
    std::string marbleTunnelPath;
    std::string gameExePath;
    // What the next write of songInfo.txt holds, and whether the last one failed and said so.
    SongInfo songInfo;
    bool songInfoUnwritable = false;
    // The folder and songInfo.txt, kept open between the polls.
    KeptFolder gameFolder;
};
