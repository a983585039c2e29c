#pragma once
#include "gamelink/gameLinkState.h"

// MusicSettings.json holds settings of every layer below; these are the file's own.
struct SettingsState : GameLinkState {
    bool versionCheck = true;
    // Set by the start-up until MusicSettings.json has been read: a library save in that time
    // must not write the defaults over the stored settings.
    bool settingsSaveHeld = false;
    // Whether the settings read at start-up named the root folders (an empty list counts).
    bool storedRootsRead = false;
};
