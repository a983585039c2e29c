#pragma once

struct PlayerState;

// Ends the run in order: timers, window graphics, files for the game, audio, the player's own
// files, and last the note to the game that the music has stopped. Runs once.
void shutdown(PlayerState& st);
