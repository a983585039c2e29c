#include "core/transport.h"

#include "core/playerState.h"
#include "playback/crossfade.h"
#include "playback/engine/engine.h"
#include "radio/segments.h"

TransportState transportState(const PlayerState& st) {
    if (!engineIsInitialized())
        return TransportState::AudioOff;
    bool tracker = st.currentMusicType == musicTypeTracker;
    for (ChannelHandle handle : {tracker ? st.trackerStream : st.musicStream,
                                 tracker ? st.trackerStreamNext : st.musicStreamNext})
        if (channelIsActive(handle) == ChannelState::Paused)
            return TransportState::Paused;
    if (channelIsActive(audibleHandle(st)) != ChannelState::Playing)
        return TransportState::Idle;
    return st.fadeWorkerRunning != 0 ? TransportState::Crossfading : TransportState::Playing;
}

void afterRepaintTest(PlayerState& st) {
    if (segmentEndDue(st))
        startTransition(st);
}
