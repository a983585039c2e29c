#pragma once

struct PlayerState;

// The painted controls answer the button going down, tested against what the last paint pass
// recorded. Every step of a left press runs, so a press where two areas overlap does both.
// x and y are client pixels. On the user-interface thread.
void onLeftPress(PlayerState& st, int x, int y);
void onRightPress(PlayerState& st, int x, int y);
// The action of control 0 to 14 of the glyph row.
void pressControl(PlayerState& st, int index);
// Cell n (0 to 9) of the search page: its row of the results on this page plays next.
void chooseSearchCell(PlayerState& st, int cell);
