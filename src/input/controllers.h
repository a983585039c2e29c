#pragma once

struct InputState;

// Starts SDL's game-controller subsystem and opens up to eight controllers. Without it the
// player goes on without controllers, after one line on the output stream (worded for the
// start-up when atStartUp).
void openControllers(InputState& st, bool atStartUp = false);
// Closes what is open and stops the subsystem; never SDL_Quit, which would take the audio along.
// controllerCount keeps its value.
void closeControllers(InputState& st);

// A controller action: the row's id with currentController set to the slot that asked.
using ControllerActionRunner = void (*)(InputState& st, int id);

// The three controller steps of the 30 ms tick, in this order. Plugging a controller in or out
// opens all again. The poll runs the rows of the action table whose input is down while the
// same controller holds the enable button (row 10): a row once per press, with a global
// debounce until every bound input is up; a volume row at the press and every 120 ms of its
// hold. It allocates nothing. The read-out names what slot 0 presses now.
void pollControllerEvents(InputState& st);
void pollControllers(InputState& st, ControllerActionRunner run);
void updatePressedButton(InputState& st);

// Both motors of a slot's controller for the time given; a failure is one line each time.
void rumble(InputState& st, int slot, int milliseconds);
