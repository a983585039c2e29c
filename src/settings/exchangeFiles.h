#pragma once

struct PlayerState;

// Writes the library, favourites, music folders and soundfont folder as text for the game.
void exportForGame(PlayerState& st);
