#pragma once
#include "library/records.h"
#include "playback/engine/handle.h"

struct PlaybackState;

// The mechanics of a change of song; the transport decides when and in which order, with
// streamMutex held so that no fade-out worker meets half of it.

// The outgoing channel (by previousMusicType, in the audible slot) starts to slide to silence
// over FADE_DURATION_MS, and goes on by itself.
void fadeOutOutgoing(PlaybackState& st);
// Loads ref into the incoming channel (by currentMusicType, in the loading slot), also when that
// gives 0, and starts it silently; a failed play is logged under the field's name.
ChannelHandle startIncoming(PlaybackState& st, SongRef ref);
// The incoming channel slides up to volume over FADE_DURATION_MS.
void fadeInIncoming(const PlaybackState& st, ChannelHandle handle);
// The first sound with nothing playing: the channel starts at volume 0 and slides up to volume;
// a failed play is logged under the main field's name.
void fadeInFirstSong(const PlaybackState& st, ChannelHandle handle);
