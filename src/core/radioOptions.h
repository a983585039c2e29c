#pragma once
#include <array>
#include <cstdint>
#include <string>

struct PlayerState;

// One number of the Radio Option dialog: its edit's id (the up-down's is the next), its place in
// client pixels, the label beside it and the setting it edits.
struct RadioOptionRow {
    int editId;
    int y;
    int editX;
    const char* label; // a ratio's holds its share as "%.1f%%"
    int PlayerState::*field;
    int maximum;
    bool ratio;
};

constexpr int crossFadeEditId = 1013;
// The loudness levelling's check box, which no other control of the window moves for.
constexpr int levellingCheckBoxId = 3020;
extern const std::array<RadioOptionRow, 12> radioOptionRows;

// The number an edit holds as the setting takes it: digits read without a limit, saturated at
// the largest int rather than wrapping negative; no digits is 0.
int radioOptionNumber(const std::string& text);
// What the edit shows on opening: the setting, the crossfade in whole seconds.
int radioOptionOpening(const PlayerState& st, const RadioOptionRow& row);
// The row's label; a ratio's with its share of the five (0.0% when all five are 0).
std::string radioOptionLabel(const PlayerState& st, const RadioOptionRow& row);
// A change of an edit stores its number at once, except the crossfade's, which waits for the
// closing.
void changeRadioOption(PlayerState& st, int editId, int value);
// Exit and the close box: the four ratios and two song times again, and the crossfade (seconds
// times 1000, saturated).
struct RadioOptionsClosing {
    int rawMIDI, rawMP3, rawTracker, rawFav, songPlayDurationMin, songPlayDurationMax;
    int crossFadeSeconds;
};
void closeRadioOptions(PlayerState& st, const RadioOptionsClosing& values);
