#pragma once
#include "display/colors.h"

#include <string>
#include <vector>

struct SettingsState;

struct ConfigPaths {
    std::string soundFontDirectoryPath;
    std::string marbleTunnelPath;
};

// config.json in the data folder; both paths empty when it cannot be read. Touches no field.
ConfigPaths loadConfig(const SettingsState& st);
void saveConfig(const SettingsState& st);

// colors.json: a list of named colours, written for the user to see; the player reads it back
// but takes its colours from its own tables.
std::vector<ColorEntry> loadColors(const std::string& path);
void saveColors(const std::vector<ColorEntry>& colors, const std::string& path);
// Read at start-up, applied to nothing.
void loadColorsAtStartup(const SettingsState& st);
// At exit: writes the built-in colours when colors.json cannot be opened; an existing file is
// left as the user made it.
void saveColorsIfMissing(const SettingsState& st);
