#include "settings/configFile.h"

#include "core/playerState.h"

// The config and colours files come with the soundfonts and the colour schemes.
ConfigPaths loadConfig(const PlayerState&) {
    return {};
}

void saveConfig(const PlayerState&) {}

void loadColorsAtStartup(const PlayerState&) {}
