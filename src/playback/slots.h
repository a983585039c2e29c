#pragma once
#include "library/records.h"
#include "playback/engine/handle.h"

#include <array>

struct PlaybackState;

// The two slots: Main (musicStream, trackerStream) and Next (musicStreamNext,
// trackerStreamNext). nextSlotActive says which one is audible; a load goes to the other. Each
// slot holds a stream (MIDI, the MP3 family, a station) and a module, picked by the music type.
enum class Slot { Main, Next };

Slot audibleSlot(const PlaybackState& st);
Slot loadingSlot(const PlaybackState& st);
// The channel field of the slot for a music type: the module's for a tracker, else the stream's.
ChannelHandle& slotChannel(PlaybackState& st, Slot slot, MusicType type);
ChannelHandle slotChannel(const PlaybackState& st, Slot slot, MusicType type);
// The field's own name, as the log lines give it ("trackerStreamNext").
const char* slotChannelName(Slot slot, MusicType type);
// Both channels of a slot, the stream first.
std::array<ChannelHandle, 2> slotChannels(const PlaybackState& st, Slot slot);
// The family's pair of what plays now, the main field first.
std::array<ChannelHandle, 2> familyChannels(const PlaybackState& st);
// The channel that is audible, by the music type and the slot flag.
ChannelHandle audibleHandle(const PlaybackState& st);
