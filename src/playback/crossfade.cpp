#include "playback/crossfade.h"

#include "core/playerState.h"
#include "playback/audioSetup.h"
#include "playback/engine/engine.h"
#include "playback/fadeWorker.h"
#include "playback/loading.h"
#include "playback/soundfonts.h"
#include "radio/segments.h"
#include "radio/walks.h"
#include "util/log.h"

namespace {

ChannelHandle& outgoingField(PlayerState& st) {
    bool tracker = st.previousMusicType == musicTypeTracker;
    if (!st.nextSlotActive)
        return tracker ? st.trackerStream : st.musicStream;
    return tracker ? st.trackerStreamNext : st.musicStreamNext;
}

// The field the load goes to, and the name its play error is logged under.
ChannelHandle& incomingField(PlayerState& st, const char*& name) {
    bool tracker = st.currentMusicType == musicTypeTracker;
    if (!st.nextSlotActive) {
        name = tracker ? "trackerStreamNext" : "musicStreamNext";
        return tracker ? st.trackerStreamNext : st.musicStreamNext;
    }
    name = tracker ? "trackerStream" : "musicStream";
    return tracker ? st.trackerStream : st.musicStream;
}

void startIncoming(PlayerState& st, SongRef ref) {
    const char* name = "";
    ChannelHandle& field = incomingField(st, name);
    bool tracker = st.currentMusicType == musicTypeTracker;
    field = tracker ? loadTracker(st, ref) : loadStream(st, ref);
    ChannelHandle handle = field;
    channelSetVolume(handle, 0.0f);
    if (!channelPlay(handle))
        logOut("Error playing %s: %u\n", name, static_cast<unsigned>(engineErrorCode()));
    if (tracker)
        setTrackerSegment(st, handle);
    else
        setStreamSegment(st, handle);
    channelSlideVolume(handle, st.volume, st.FADE_DURATION_MS);
}

void endHistoryWalk(PlayerState& st) {
    if (st.historyNavigation != 0 && st.historyPosition >= st.historyEnd - 1) {
        st.historyNavigation = 0;
        st.historyPosition = st.historyEnd - 1;
    }
}

} // namespace

void startTransition(PlayerState& st) {
    st.lcdDirty = true;
    st.songInfoDirty = true;
    SongRef ref = chooseTransitionSource(st);
    logChosenSong(st, ref);
    // The worker stops and frees under the same lock, so it never meets half a transition, and
    // with no fade at all it cannot wake before the slots have flipped.
    std::lock_guard lock(st.streamMutex);
    if (st.fadeWorkerRunning == 0)
        channelSlideVolume(outgoingField(st), 0.0f, st.FADE_DURATION_MS);
    else
        stopAllStreams(st);
    startIncoming(st, ref);
    if (st.fadeWorkerRunning == 0)
        startFadeWorker(st);
    else
        st.fadeWorkerRunning = 0;
    if (st.currentMusicType == musicTypeMidi && !st.onStation) {
        ++st.songsSinceFontChange;
        rotateSoundFont(st);
    }
    endHistoryWalk(st);
    st.nextSlotActive = !st.nextSlotActive;
    st.previousMusicType = st.currentMusicType;
}

void applyVolume(PlayerState& st) {
    st.volumeTextShown = true;
    st.lcdDirty = true;
    st.activeHandle = audibleHandle(st);
    channelSetVolume(st.activeHandle, st.volume);
    st.appliedVolume = st.volume;
    if (st.volumeToggleState == 2)
        st.highVolume = st.volume;
    if (st.volumeToggleState == 1)
        st.lowVolume = st.volume;
}

void toggleVolumeLevel(PlayerState& st) {
    if (st.volumeToggleState == 1) {
        st.volumeToggleState = 2;
        st.volume = st.highVolume;
    } else {
        st.volumeToggleState = 1;
        st.volume = st.lowVolume;
    }
    channelSlideVolume(audibleHandle(st), st.volume, 2000);
    st.volumeTextShown = true;
    st.lcdDirty = true;
}

void togglePause(PlayerState& st) {
    bool tracker = st.currentMusicType == musicTypeTracker;
    // The main field first, whichever slot is audible: during a fade into the Next slot this
    // pauses the song that is going.
    const ChannelHandle order[2] = {tracker ? st.trackerStream : st.musicStream,
                                    tracker ? st.trackerStreamNext : st.musicStreamNext};
    for (ChannelHandle handle : order) {
        ChannelState state = channelIsActive(handle);
        if (state == ChannelState::Playing) {
            channelPause(handle);
            break;
        }
        if (state == ChannelState::Paused) {
            channelPlay(handle);
            break;
        }
    }
    if (tracker)
        st.buttonsDirty = true;
}
