#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

struct InputState;

// The X keysyms a Windows virtual-key code stands for, the first the main one (a keypad key
// and its twin, both Enter keys, left and right modifiers); empty for a code without a key here.
std::vector<std::uint32_t> keysymsOfVirtualKey(std::uint32_t vk);

// The virtual-key code of a key by one of its keysyms, 0 for none (a letter's capital too).
std::uint32_t virtualKeyOfKeysym(std::uint32_t keysym);

// The word the Hotkey dialog shows for a key: a letter or digit itself, a key that types a
// printable character (space, the keypad) that character, else its name, else "Unknown".
std::string keyName(std::uint32_t vk);

enum class ControllerFamily { Xbox, PlayStation, Generic };
// By the controller's name, case-sensitively: "Xbox", then "DualSense" or "DualShock".
ControllerFamily controllerFamily(const std::string& name);
// A button of the family by its SDL index; a generic controller's as SDL words it.
std::string buttonName(ControllerFamily family, int index);

// One entry of a controller input list: its text and its item value (-1 none, a button's index
// + 1, 22 and 23 the triggers).
using InputEntry = std::pair<std::string, int>;
constexpr int noInputEntry = -1;
constexpr int leftTriggerEntry = 22;
constexpr int rightTriggerEntry = 23;
// The list of the Hotkey dialog's controller inputs, by the family of the controller in slot 0;
// only "None" without one.
std::vector<InputEntry> fillInputList(const InputState& st);
// The position of a row's binding in such a list, found by its text; -1 when none matches.
int selectBoundInput(const std::vector<InputEntry>& list, const InputState& st, int button,
                     int trigger);
