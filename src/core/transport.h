#pragma once

struct PlayerState;

// The one place that changes what plays. Every change of song, by itself or by hand, is
// startTransition(); the only other way to a first sound is startPlayback(). The radio decides
// what plays (radio/), playback moves the channels (playback/); this file puts them in order.
// All on the user-interface thread.

enum class TransportState { AudioOff, Idle, Playing, Crossfading, Paused };

// What playback is doing, read from the engine and the fade flag; nothing stores it.
TransportState transportState(const PlayerState& st);

// The first sound with nothing playing: draws what plays and fades it in at its segment.
void startPlayback(PlayerState& st);
// Every change of song: chooses what plays, fades the old song out and the new one in over
// FADE_DURATION_MS, and leaves a worker to clear the old slot. During a fade it cuts hard.
void startTransition(PlayerState& st);
// Pauses the first playing channel of the family's pair, or resumes the first paused one.
void togglePause(PlayerState& st);
// Frees everything, initialises the audio again and starts playback anew.
void restartAudio(PlayerState& st);

// The walks: a step of the radio, heard at once through a transition.
void nextPlaylist(PlayerState& st);
void previousPlaylist(PlayerState& st);
// One step back through the history; nothing at the first row.
void previousSong(PlayerState& st);
// To seconds in the audible song: only that channel moves, the segment and the history stay, and
// the end test catches a jump past the segment's end. A song that ended by itself plays again
// from there. The desktop hears of the jump.
void seekActiveSong(PlayerState& st, double seconds);

// The end of each repaint: the next song starts here when its segment is over.
void afterRepaintTest(PlayerState& st);
