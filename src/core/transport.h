#pragma once

struct PlayerState;

enum class TransportState { AudioOff, Idle, Playing, Crossfading, Paused };

// What playback is doing, read from the engine and the fade flag; nothing stores it.
TransportState transportState(const PlayerState& st);
// The end of each repaint: the next song starts here when its segment is over.
void afterRepaintTest(PlayerState& st);
