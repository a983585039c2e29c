#include "playback/crossfade.h"

#include "playback/engine/engine.h"
#include "playback/loading.h"
#include "playback/playbackState.h"
#include "playback/slots.h"
#include "util/log.h"

namespace {

void logPlayError(Slot slot, MusicType type) {
    logOut("Error playing %s: %u\n", slotChannelName(slot, type),
           static_cast<unsigned>(engineErrorCode()));
}

} // namespace

void fadeOutOutgoing(PlaybackState& st) {
    channelSlideVolume(slotChannel(st, audibleSlot(st), st.previousMusicType), 0.0f,
                       st.FADE_DURATION_MS);
}

ChannelHandle startIncoming(PlaybackState& st, SongRef ref) {
    const Slot slot = loadingSlot(st);
    const MusicType type = st.currentMusicType;
    ChannelHandle& field = slotChannel(st, slot, type);
    field = type == musicTypeTracker ? loadTracker(st, ref) : loadStream(st, ref);
    ChannelHandle handle = field;
    channelSetVolume(handle, 0.0f);
    if (!channelPlay(handle))
        logPlayError(slot, type);
    return handle;
}

void fadeInIncoming(const PlaybackState& st, ChannelHandle handle) {
    channelSlideVolume(handle, st.volume, st.FADE_DURATION_MS);
}

void fadeInFirstSong(const PlaybackState& st, ChannelHandle handle) {
    channelSetVolume(handle, 0.0f);
    channelSlideVolume(handle, st.volume, st.FADE_DURATION_MS);
    if (!channelPlay(handle))
        logPlayError(Slot::Main, st.currentMusicType);
    else
        logOut("Fading in to volume %.2f over %d ms.\n", st.volume, st.FADE_DURATION_MS);
}
