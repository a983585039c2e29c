#pragma once
#include "settings/settingsState.h"
#include "update/versionCheck.h"

#include <string>

// Everything the running player knows: one instance lives for the whole process. The fields stand
// in the layer of the subsystem that owns them (see library/libraryState.h); what only the
// window's events need stands here.
struct PlayerState : SettingsState {
    bool paintedSinceTick = false; // a repaint ran since the last tick of timer 1
    bool endTestRunning = false;   // the end of a repaint (or its tick) is deciding
    int pollPeriod = 0;            // the period timers 3 and 2 run at, 0 while stopped
    int latchPeriod = 0;
    // Where the version check asks: the maker's web site, or a test's own server.
    std::string versionServer = makerAddress();
};
