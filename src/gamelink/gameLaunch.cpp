#include "gamelink/gameLaunch.h"

#include "gamelink/gameLinkState.h"

// The launch arrives with the game link; until then the menu entry only writes the exchange files.
bool launchGame(GameLinkState&) {
    return false;
}
