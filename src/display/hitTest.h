#pragma once
#include "display/geometry.h"

#include <span>

// The first rectangle holding the point, or -1.
int firstHit(std::span<const Box> rects, int x, int y);
// The volume a press at y on the upright bar asks for, 0 at the bottom edge.
float volumeAt(const Box& bar, int y);
// A figures bar's value at x: 0 in its first column, the largest value only at its right edge.
int barValueAt(const Box& bar, int x, int largest);
