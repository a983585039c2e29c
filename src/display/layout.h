#pragma once
#include "display/geometry.h"

struct DisplayState;

// The client area is laid out on a grid of 500 by 155 units that stretches with the window, each
// axis by its own scale.
constexpr int gridWidth = 500;
constexpr int gridHeight = 155;

// A grid value in pixels: the product with its axis's scale, truncated.
int gridX(const DisplayState& st, float units);
int gridY(const DisplayState& st, float units);
Box gridBox(const DisplayState& st, float x, float y, float width, float height);
// Font and glyph sizes scale with the smaller axis.
float minScale(const DisplayState& st);
// A window more than twice the grid's height moves some lines down.
bool tall(const DisplayState& st);

// The size message of the main window: a size is taken as it comes, a minimised window's too, so
// the scales may fall to 0 until the restoring size arrives.
void onResize(DisplayState& st, int width, int height);
