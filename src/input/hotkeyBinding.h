#pragma once
#include <cstdint>

constexpr int hotkeyRowCount = 30;
constexpr int maxControllers = 8;
// SDL's game-controller axes of the two triggers, as a row's trigger names them.
constexpr int leftTriggerAxis = 4;
constexpr int rightTriggerAxis = 5;

// One row of the action table: a keyboard chord and one controller input for the action whose
// number is the row's index.
struct HotkeyBinding {
    std::uint32_t vkKey = 0; // a Windows virtual-key code, kept so that the files stay portable
    bool ctrl = false;
    bool alt = false;
    bool shift = false;
    int gameControllerButton = -1;
    int gameControllerTrigger = -1;
};
