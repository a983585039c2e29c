#pragma once

struct SettingsState;

// Writes the library, favourites, music folders and soundfont folder as text for the game.
void exportForGame(SettingsState& st);
