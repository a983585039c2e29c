#pragma once
#include "input/hotkeyBinding.h"
#include "radio/radioState.h"

#include <array>
#include <string>
#include <vector>

// The action table, its keys and controller inputs, and the type-ahead search.
struct InputState : RadioState {
    bool useRumble = true;
    bool useRumbleToggle = true;
    int rumbleTime = 500;
    int rumbleTimeToggle = 100;

    // Never fewer than 30 rows, ids 0 to 29; rows a file had past them are kept and saved back.
    std::vector<HotkeyBinding> hotkeyTable = std::vector<HotkeyBinding>(hotkeyRowCount);
    bool volumeUpLatch = false;
    bool volumeDownLatch = false;
    // The controllers themselves belong to the platform; the logic knows them by slot and name.
    std::array<std::string, maxControllers> controllerNames{};
    int controllerCount = 0;
    int currentController = 0;
    // The poll's latches: a row fires once per press, the enable button rumbles once per press,
    // and a volume row counts the ticks of its hold.
    std::array<bool, hotkeyRowCount> actionHeld{};
    std::array<bool, hotkeyRowCount> actionRumbled{};
    std::array<bool, maxControllers> enableRumbled{};
    std::array<int, 2> volumeHoldTicks{};
    bool controllerPollRunning = false; // an action's box turns the loop, and the timer with it
    std::string pressedButtonText;
    std::string searchText;
    std::array<bool, 256> searchKeyLatch{}; // keys that counted during this press
};
