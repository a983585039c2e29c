#pragma once
#include <string>

struct PlayerState;

// Reads MusicSettings.json at path over the settings; false when it cannot be opened and read.
bool loadMusicSettings(PlayerState& st, const std::string& path);
