#include "playback/loading.h"

#include "library/model.h"
#include "playback/engine/engine.h"
#include "playback/playbackState.h"
#include "playback/tags.h"
#include "util/log.h"

namespace {

int errorCode() {
    return static_cast<int>(engineErrorCode());
}

// The song a reference names, or null after the log line that says which index is wrong.
Song* songAt(PlaybackState& st, SongRef ref, bool setPlaying) {
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
const RadioStation* stationAt(const PlaybackState& st) {
    if (st.currentStation < 0 || st.currentStation >= static_cast<int>(st.radioStations.size())) {
        logOut("Error: Invalid station index.\n");
        return nullptr;
    }
    return &st.radioStations[st.currentStation];
}

} // namespace

ChannelHandle loadTracker(PlaybackState& st, SongRef ref) {
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

ChannelHandle loadStream(PlaybackState& st, SongRef ref) {
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
