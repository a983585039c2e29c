#pragma once
#include <array>
#include <optional>
#include <string>

struct PlayerState;

// The rules of the Visual Options dialog: every change acts on the player at once.

// A number field of the look: its edit's id and its up-down's, its place in client pixels and the
// setting it edits.
struct VisualNumber {
    int editId;
    int upDownId;
    int x;
    int y;
    int PlayerState::*field;
};
extern const std::array<VisualNumber, 12> visualNumbers;
constexpr int windowAlphaEditId = 2019;

// The three colour groups: the frame's title and left edge, the list of named colours and the
// edits of its red, green and blue.
struct ColorGroup {
    const char* title;
    int x;
    int listId;
    std::array<int, 3> editIds;
};
extern const std::array<ColorGroup, 3> colorGroups;

// A number field's new text, however it changed. Digits are read without a limit (a colour paints
// its low 8 bits); the window's opacity takes only a field that holds a number, floored at 80.
void changeVisualNumber(PlayerState& st, int editId, const std::string& text);
// The row of the named colours that a group's list shows for the group's colour, if any.
std::optional<int> groupColorRow(const PlayerState& st, const ColorGroup& group);
// A scheme chosen in its list: the nine colours at once, the screen repainted.
void chooseColorScheme(PlayerState& st, int index);
// A texture chosen in a list (slot 0 the background, 1 the LCD); one that fails to load shows
// its box, and the choice stays.
void chooseTexture(PlayerState& st, int slot, const std::string& name);
// "Random Color Scheme": flips the setting; turned on, it draws and applies a scheme at once,
// whose index it returns, for the main window's next repaint to show.
std::optional<int> toggleRandomColorScheme(PlayerState& st);
std::string randomColorText(const PlayerState& st);
// "Auto Borderless": flips the setting. The button's words at the opening are capitalised
// differently from those after a click.
void toggleAutoBorderless(PlayerState& st);
std::string autoBorderlessText(const PlayerState& st, bool opening);
