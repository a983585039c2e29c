#include "playback/loading.h"

#include "core/playerState.h"
#include "library/model.h"
#include "playback/engine/engine.h"
#include "playback/tags.h"
#include "radio/segments.h"
#include "radio/selection.h"
#include "util/log.h"

namespace {

int errorCode() {
    return static_cast<int>(engineErrorCode());
}

// The song a reference names, or null after the log line that says which index is wrong.
Song* songAt(PlayerState& st, SongRef ref, bool setPlaying) {
    if (ref.plistIndex < 0 || ref.plistIndex >= static_cast<int>(st.playlists.size())) {
        logOut("Error: Invalid playlist index.\n");
        return nullptr;
    }
    if (setPlaying) {
        st.playingPlaylist = ref.plistIndex;
        st.playingSong = ref.songIndex;
    }
    std::vector<Song>& songs = st.playlists[ref.plistIndex].songs;
    if (ref.songIndex < 0 || ref.songIndex >= static_cast<int>(songs.size())) {
        logOut("Error: Invalid song index.\n");
        return nullptr;
    }
    return &songs[ref.songIndex];
}

// A station from a history row of an earlier run can lie past the end of the list.
const RadioStation* stationAt(const PlayerState& st) {
    if (st.currentStation < 0 || st.currentStation >= static_cast<int>(st.radioStations.size())) {
        logOut("Error: Invalid station index.\n");
        return nullptr;
    }
    return &st.radioStations[st.currentStation];
}

void fadeIn(PlayerState& st, ChannelHandle handle, const char* playError) {
    channelSetVolume(handle, 0.0f);
    channelSlideVolume(handle, st.volume, st.FADE_DURATION_MS);
    if (!channelPlay(handle))
        logOut(playError, static_cast<unsigned>(errorCode()));
    else
        logOut("Fading in to volume %.2f over %d ms.\n", st.volume, st.FADE_DURATION_MS);
}

} // namespace

ChannelHandle loadTracker(PlayerState& st, SongRef ref) {
    Song* song = songAt(st, ref, true);
    if (!song)
        return 0;
    ++song->playCount;
    st.songFilePath = song->songPath;
    ChannelHandle handle = 0;
    if (!st.nextSlotActive) {
        logOut("Loading next song into trackerStreamNext as HMUSIC.\n");
        handle = st.trackerStreamNext = musicLoad(song->songPath);
        if (!handle) {
            logOut("Error creating trackerStreamNext (HMUSIC). Error code: %d\n", errorCode());
            return 0;
        }
        channelSetVolume(handle, 0.0f);
    } else {
        logOut("Loading song into main trackerStream as HMUSIC.\n");
        handle = st.trackerStream = musicLoad(song->songPath);
        if (!handle) {
            logOut("Error creating trackerStream (HMUSIC). Error code: %d\n", errorCode());
            return 0;
        }
        channelSetVolume(handle, st.volume);
        if (!channelPlay(handle))
            logOut("Error playing trackerStream (HMUSIC). Error code: %d\n", errorCode());
    }
    st.songTitle = titleFromPath(song->songPath);
    return handle;
}

ChannelHandle loadStream(PlayerState& st, SongRef ref) {
    std::string address;
    std::string title;
    if (!st.onStation) {
        Song* song = songAt(st, ref, false);
        if (!song)
            return 0;
        address = song->songPath;
        title = titleFromPath(address);
        ++song->playCount;
        st.songFilePath = address;
    } else {
        const RadioStation* station = stationAt(st);
        if (!station)
            return 0;
        address = station->url;
        title = station->name;
    }
    st.playingPlaylist = ref.plistIndex;
    st.playingSong = ref.songIndex;
    auto create = [&](const std::string& where) {
        return st.onStation ? streamCreateUrl(where) : streamCreateFile(where);
    };
    ChannelHandle handle = 0;
    if (!st.nextSlotActive) {
        logOut("Loading next song/radio into musicStreamNext.\n");
        handle = st.musicStreamNext = create(address);
        if (!handle) {
            logOut("Error creating musicStreamNext. Error code: %d\n", errorCode());
            return 0;
        }
    } else {
        logOut("Loading song/radio into main musicStream.\n");
        handle = st.musicStream = create(address);
        if (!handle) {
            logOut("Error creating musicStream. Error code: %d\n", errorCode());
            return 0;
        }
    }
    if (st.onStation)
        readStationTags(st, handle);
    channelSetVolume(handle, 0.0f);
    st.songTitle = title;
    return handle;
}

void startPlayback(PlayerState& st) {
    // A fade-out worker still asleep must not clear the slots while they are filled anew.
    std::lock_guard lock(st.streamMutex);
    SongRef ref = selectNextSong(st);
    logChosenSong(st, ref);
    st.nextSlotActive = false;
    if (st.currentMusicType == musicTypeTracker) {
        ChannelHandle handle = loadTracker(st, ref);
        st.trackerStream = handle;
        if (!handle) {
            logOut("Error loading trackerStream: %u\n", static_cast<unsigned>(errorCode()));
            return;
        }
        fadeIn(st, handle, "Error playing trackerStream: %u\n");
        setTrackerSegment(st, handle);
        return;
    }
    ChannelHandle handle = loadStream(st, ref);
    st.musicStream = handle;
    fadeIn(st, handle, "Error playing musicStream: %u\n");
    setStreamSegment(st, handle);
}

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
