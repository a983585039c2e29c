#pragma once
#include <string>

struct SettingsState;

// Reads MusicSettings.json at path over the settings. False, with one line and nothing changed,
// when the file cannot be opened. A damaged file still counts as read: every key that can be
// read is taken, the others keep their values, and one line names the file.
bool loadMusicSettings(SettingsState& st, const std::string& path);

// Writes the 37 settings to MusicSettings.json in the data folder; one line when that fails.
void saveMusicSettings(const SettingsState& st);
