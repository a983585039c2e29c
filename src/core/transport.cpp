#include "core/transport.h"

#include "core/audioStart.h"
#include "core/hostPort.h"
#include "core/playerState.h"
#include "library/model.h"
#include "playback/audioSetup.h"
#include "playback/crossfade.h"
#include "playback/engine/engine.h"
#include "playback/fadeWorker.h"
#include "playback/levelling.h"
#include "playback/loading.h"
#include "playback/slots.h"
#include "playback/soundfonts.h"
#include "radio/segments.h"
#include "radio/selection.h"
#include "radio/walks.h"
#include "util/log.h"

#include <mutex>
#include <utility>

namespace {

// Names what the draw chose, so that a headless run shows it.
void logChosenSong(const PlayerState& st, SongRef ref) {
    const Song* song = findSong(st, ref);
    if (st.onStation || st.songHistory.empty() || !song)
        return;
    int at = st.historyPosition;
    if (at < 0 || at >= static_cast<int>(st.songHistory.size()))
        at = st.historyEnd - 1;
    if (at < 0 || at >= static_cast<int>(st.songHistory.size()))
        return;
    const HistoryEntry& row = st.songHistory[at];
    logOut("Drawn song: %s\n", song->songPath.c_str());
    logOut("History row %d: songType %d, songIndex %d, plistIndex %d\n", at, row.songType,
           row.songIndex, row.plistIndex);
}

// A family draw that met negative ratios leaves nothing to hear of what played.
void stopIfNoFamily(PlayerState& st) {
    if (std::exchange(st.noFamilyDrawn, false))
        stopAllStreams(st);
}

// Runs after the transition has let go of streamMutex: a restart ends in a start of playback,
// which takes that lock, and a box must not hold it while the user reads it.
void finishRotation(PlayerState& st, const RotationOutcome& outcome) {
    if (outcome.recovery == FontRecovery::RestartAudio) {
        restartAudio(st); // a new song from a new set-up: nothing left to repair
        return;
    }
    showFontBox(outcome.box);
    if (outcome.recovery == FontRecovery::Rescan) {
        rescanSoundFonts(st);
        if (outcome.repairDue)
            showFontBox(repairSoundFont(st, Slot::Next));
    }
}

void setSegment(PlayerState& st, ChannelHandle handle) {
    if (st.currentMusicType == musicTypeTracker)
        setTrackerSegment(st, handle);
    else
        setStreamSegment(st, handle);
}

} // namespace

TransportState transportState(const PlayerState& st) {
    if (!engineIsInitialized())
        return TransportState::AudioOff;
    for (ChannelHandle handle : familyChannels(st))
        if (channelIsActive(handle) == ChannelState::Paused)
            return TransportState::Paused;
    if (channelIsActive(audibleHandle(st)) != ChannelState::Playing)
        return TransportState::Idle;
    return st.fadeWorkerRunning != 0 ? TransportState::Crossfading : TransportState::Playing;
}

void startPlayback(PlayerState& st) {
    {
        // A fade-out worker still asleep must not clear the slots while they are filled anew.
        std::lock_guard lock(st.streamMutex);
        SongRef ref = selectNextSong(st);
        stopIfNoFamily(st);
        logChosenSong(st, ref);
        st.nextSlotActive = false;
        const bool tracker = st.currentMusicType == musicTypeTracker;
        ChannelHandle handle = tracker ? loadTracker(st, ref) : loadStream(st, ref);
        slotChannel(st, Slot::Main, st.currentMusicType) = handle;
        if (tracker && !handle) {
            logOut("Error loading trackerStream: %u\n", static_cast<unsigned>(engineErrorCode()));
        } else {
            levelIncoming(st, handle);
            fadeInFirstSong(st, handle);
            setSegment(st, handle);
        }
        armLoadRetry(st, handle);
    }
    host::notifyPlayerChanged(host::PlayerChange::Song);
}

void startTransition(PlayerState& st) {
    st.lcdDirty = true;
    st.songInfoDirty = true;
    SongRef ref = chooseTransitionSource(st);
    stopIfNoFamily(st);
    logChosenSong(st, ref);
    RotationOutcome rotation;
    {
        // The worker stops and frees under the same lock, so it never meets half a transition,
        // and with no fade at all it cannot wake before the slots have flipped.
        std::lock_guard lock(st.streamMutex);
        if (st.fadeWorkerRunning == 0)
            fadeOutOutgoing(st);
        else
            stopAllStreams(st); // a change during a fade cuts hard
        ChannelHandle handle = startIncoming(st, ref);
        setSegment(st, handle); // after the start of play: the jump comes once it plays
        armLoadRetry(st, handle);
        fadeInIncoming(st, handle);
        if (st.fadeWorkerRunning == 0)
            startFadeWorker(st);
        else
            st.fadeWorkerRunning = 0;
        if (st.currentMusicType == musicTypeMidi && !st.onStation) {
            ++st.songsSinceFontChange;
            rotation = rotateSoundFont(st);
        }
        levelIncoming(st, handle); // through the font it will be heard with, before it is heard
        endHistoryWalkAtLastRow(st);
        st.nextSlotActive = !st.nextSlotActive;
        st.previousMusicType = st.currentMusicType;
    }
    finishRotation(st, rotation);
    host::notifyPlayerChanged(host::PlayerChange::Song);
}

void togglePause(PlayerState& st) {
    // The main field first, whichever slot is audible: during a fade into the Next slot this
    // pauses the song that is going.
    for (ChannelHandle handle : familyChannels(st)) {
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
    if (st.currentMusicType == musicTypeTracker)
        st.buttonsDirty = true;
    host::notifyPlayerChanged(host::PlayerChange::PlayState);
}

void restartAudio(PlayerState& st) {
    releaseAudio(st);
    initAudio(st);
    startPlayback(st);
}

void nextPlaylist(PlayerState& st) {
    stepModeForward(st);
    startTransition(st);
}

void previousPlaylist(PlayerState& st) {
    stepModeBack(st);
    startTransition(st);
}

void previousSong(PlayerState& st) {
    if (stepBackInHistory(st))
        startTransition(st);
}

void afterRepaintTest(PlayerState& st) {
    noteStationEnd(st);
    if (segmentEndDue(st) || loadRetryDue(st))
        startTransition(st);
}

void seekActiveSong(PlayerState& st, double seconds) {
    const ChannelHandle handle = st.activeHandle;
    const bool ended = channelIsActive(handle) == ChannelState::Stopped;
    // A module that has just played to its end stops before the end test moves on; moved back
    // into the song it must play again, or the end test would wait for an end it never reaches.
    if (channelSetPosition(handle, channelSecondsToBytes(handle, seconds)) && ended)
        channelPlay(handle);
    host::notifyPlayerChanged(host::PlayerChange::Position);
}
