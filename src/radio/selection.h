#pragma once
#include "library/records.h"

struct RadioState;

// Result of the family draw.
constexpr int familyNone = -1;
constexpr int familyMidi = 0;
constexpr int familyMp3 = 1;
constexpr int familyTracker = 2;
constexpr int familyFavorites = 3;
constexpr int familyRadio = 4;

// Draws a family from the five ratios (0 to 4), or -1 when the ratios are negative; then
// noFamilyDrawn is set and the caller stops the streams. May clear the ratios of empty families,
// which the settings then keep.
int pickFamily(RadioState& st);
// What plays next; (0, 0) when nothing can be chosen. Appends its history row.
SongRef selectNextSong(RadioState& st);
// Some song of the library fits the family (3: a favourite; else that music type).
bool familyHasSongs(const RadioState& st, int family);
// Any song, by rand() over the whole library; the way out when the weighted draw fails.
SongRef pickPlainSong(RadioState& st);
