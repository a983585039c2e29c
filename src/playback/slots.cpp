#include "playback/slots.h"

#include "playback/playbackState.h"

Slot audibleSlot(const PlaybackState& st) {
    return st.nextSlotActive.load() ? Slot::Next : Slot::Main;
}

Slot loadingSlot(const PlaybackState& st) {
    return st.nextSlotActive.load() ? Slot::Main : Slot::Next;
}

namespace {

// One choice for both constnesses.
template <typename State> auto& channelField(State& st, Slot slot, MusicType type) {
    bool tracker = type == musicTypeTracker;
    if (slot == Slot::Main)
        return tracker ? st.trackerStream : st.musicStream;
    return tracker ? st.trackerStreamNext : st.musicStreamNext;
}

} // namespace

ChannelHandle& slotChannel(PlaybackState& st, Slot slot, MusicType type) {
    return channelField(st, slot, type);
}

ChannelHandle slotChannel(const PlaybackState& st, Slot slot, MusicType type) {
    return channelField(st, slot, type);
}

const char* slotChannelName(Slot slot, MusicType type) {
    bool tracker = type == musicTypeTracker;
    if (slot == Slot::Main)
        return tracker ? "trackerStream" : "musicStream";
    return tracker ? "trackerStreamNext" : "musicStreamNext";
}

std::array<ChannelHandle, 2> slotChannels(const PlaybackState& st, Slot slot) {
    return {slotChannel(st, slot, musicTypeMidi), slotChannel(st, slot, musicTypeTracker)};
}

std::array<ChannelHandle, 2> familyChannels(const PlaybackState& st) {
    return {slotChannel(st, Slot::Main, st.currentMusicType),
            slotChannel(st, Slot::Next, st.currentMusicType)};
}

ChannelHandle audibleHandle(const PlaybackState& st) {
    return slotChannel(st, audibleSlot(st), st.currentMusicType);
}
