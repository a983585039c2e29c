#pragma once
#include <string>

struct PlayerState;

struct ConfigPaths {
    std::string soundFontDirectoryPath;
    std::string marbleTunnelPath;
};

// config.json in the data folder; both paths empty when it cannot be read. Touches no field.
ConfigPaths loadConfig(const PlayerState& st);
void saveConfig(const PlayerState& st);
// colors.json in the data folder; read at start-up, applied to nothing.
void loadColorsAtStartup(const PlayerState& st);
