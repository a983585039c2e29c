#pragma once
#include "input/hotkeyBinding.h"
#include "radio/radioState.h"

#include <array>
#include <string>

// The action table, its keys and controller inputs, and the type-ahead search.
struct InputState : RadioState {
    bool useRumble = true;
    bool useRumbleToggle = true;
    int rumbleTime = 500;
    int rumbleTimeToggle = 100;

    std::array<HotkeyBinding, hotkeyRowCount> hotkeyTable{};
    bool volumeUpLatch = false;
    bool volumeDownLatch = false;
    // The controllers themselves belong to the platform; the logic knows them by slot and name.
    std::array<std::string, maxControllers> controllerNames{};
    int controllerCount = 0;
    int currentController = 0;
    std::string pressedButtonText;
    std::string searchText;
};
