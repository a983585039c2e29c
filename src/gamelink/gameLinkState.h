#pragma once
#include "display/displayState.h"

#include <string>

// The companion game's folder, where every exchange file lies; empty turns the link off.
struct GameLinkState : DisplayState {
    std::string marbleTunnelPath;
    std::string gameExePath;
};
