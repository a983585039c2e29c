#pragma once
#include <array>
#include <string>

struct InputState;
struct PlayerState;

// The rules of the Hotkey Options dialog, over the action table and the controller settings.

// A row of the key column: the action it binds and its key field's id N; the row's input list is
// N + 1 and its Ctrl, Alt and Shift boxes N + 2 to N + 4.
struct HotkeyRow {
    int y;
    int actionId;
    const char* label;
    int keyFieldId;
};
extern const std::array<HotkeyRow, 15> hotkeyRows;

// The input list of the enable button (the action that shifts the controller's rows), alone on
// its line without a key.
constexpr int enableListId = 152;
constexpr int enableListY = 480;
constexpr const char* enableListLabel = "Joysitck Toggle:";

// The up-downs of the four numbers at the bottom.
namespace hotkeySpin {
constexpr int lowVolume = 172;
constexpr int highVolume = 173;
constexpr int rumbleTime = 188;
constexpr int rumbleTimeToggle = 189;
} // namespace hotkeySpin

// An entry chosen in a row's input list, by its item value: -1 none, 1 to 21 a button's index + 1,
// 22 and 23 the left and right trigger. The enable button's list knows buttons only: a trigger
// there becomes a button that is never down.
void chooseControllerInput(InputState& st, int actionId, int value);
// The position an up-down opens at, and the setting a step stores: the number the step starts
// from, so the setting stays one step behind what the field shows.
int spinOpening(const PlayerState& st, int upDownId);
void stepHotkeySpin(PlayerState& st, int upDownId, int from);
// A click on the "On" or "Off" box of a rumble line: the setting follows, and the line's other box
// takes the opposite tick of the one clicked. Returns that other box's tick.
bool clickRumbleBox(bool& setting, bool clickedOn, bool nowTicked);

struct ChordFlags {
    bool ctrl = false;
    bool alt = false;
    bool shift = false;
};
// Save: the boxes' flags into the 15 rows, the table to the data folder's file, the chords
// registered anew. A file that cannot be written is one line on the error stream and nothing else.
void saveHotkeyOptions(PlayerState& st, const std::array<ChordFlags, 15>& flags);

// The painted lines about the controllers: the count, one line a slot below it (at most 8), the
// read-out of what slot 0 presses. An empty name or read-out prints as "(null)".
std::string controllerCountLine(const InputState& st);
std::string controllerLine(const InputState& st, int slot);
std::string pressedButtonLine(const InputState& st);
// The top of the read-out box, which moves down a line with every controller counted.
int pressedButtonTop(const InputState& st);
