#pragma once

struct PlayerState;

// The first sound with nothing playing: draws what plays and starts it.
void startPlayback(PlayerState& st);
