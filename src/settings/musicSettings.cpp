#include "settings/musicSettings.h"

#include "core/playerState.h"

// Until the settings file is written, the built-in defaults hold at every start.
bool loadMusicSettings(PlayerState&, const std::string&) {
    return false;
}
