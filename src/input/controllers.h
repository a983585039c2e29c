#pragma once

struct InputState;

// Starts SDL's game-controller subsystem and opens up to eight controllers. Without it the
// player goes on without controllers, after one line on the output stream.
void openControllers(InputState& st);
// Closes what is open and stops the subsystem; never SDL_Quit, which would take the audio along.
void closeControllers(InputState& st);
