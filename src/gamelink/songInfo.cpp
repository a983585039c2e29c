#include "gamelink/songInfo.h"

#include "gamelink/commandFile.h"
#include "gamelink/gameLinkState.h"
#include "library/model.h"
#include "util/log.h"
#include "util/plainFile.h"

#include <bit>

namespace {

void putBytes(std::string& out, std::uint64_t value, int count) {
    for (int i = 0; i < count; ++i)
        out.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
}

void putInt(std::string& out, std::int32_t value) {
    putBytes(out, static_cast<std::uint32_t>(value), 4);
}

void putDouble(std::string& out, double value) {
    putBytes(out, std::bit_cast<std::uint64_t>(value), 8);
}

void putText(std::string& out, const std::string& text) {
    putBytes(out, static_cast<std::uint32_t>(text.size()), 4);
    out += text;
}

// After a PLAY_SONG that named nothing, playingPlaylist and playingSong point at no song.
std::int32_t favoriteCountOnShow(const GameLinkState& st) {
    if (st.onStation) {
        const RadioStation* station = findStation(st, st.currentStation);
        return station ? station->favoriteCount : 0;
    }
    const Song* song = findSong(st, {st.playingPlaylist, st.playingSong});
    return song ? song->favoriteCount : 0;
}

} // namespace

void snapshotSongInfo(GameLinkState& st) {
    SongInfo& info = st.songInfo;
    info.title = st.onStation ? st.streamTitle : st.songTitle;
    info.folder = st.onStation ? st.stationName : st.currentFolderTitle;
    info.positionSeconds = st.positionSeconds;
    info.lengthBytes = st.lengthBytes;
    info.lengthSeconds = st.lengthSeconds;
    info.positionBytes = st.positionBytes;
    info.appliedVolume = st.appliedVolume;
    info.favoriteCount = favoriteCountOnShow(st);
    info.FADE_DURATION_MS = st.FADE_DURATION_MS;
    info.rawFav = st.rawFav;
    info.rawMIDI = st.rawMIDI;
    info.rawMP3 = st.rawMP3;
    info.rawTracker = st.rawTracker;
    info.rawRadio = st.rawRadio;
    info.songsBeforeSoundfontChange = st.songsBeforeSoundfontChange;
    info.songPlayDurationMin = st.songPlayDurationMin;
    info.songPlayDurationMax = st.songPlayDurationMax;
    info.iSongPlayDurationMin = st.iSongPlayDurationMin;
    info.iSongPlayDurationMax = st.iSongPlayDurationMax;
    info.playingSong = st.playingSong;
    info.playingPlaylist = st.playingPlaylist;
    info.segmentEnd = st.segmentEnd;
    info.segmentStart = st.segmentStart;
    info.stationMode = st.stationMode;
}

std::string encodeSongInfo(const SongInfo& info) {
    std::string out;
    out.reserve(songInfoFixedBytes + info.title.size() + info.folder.size());
    putText(out, info.title);
    putText(out, info.folder);
    putDouble(out, info.positionSeconds);
    putBytes(out, info.lengthBytes, 8);
    putDouble(out, info.lengthSeconds);
    putBytes(out, info.positionBytes, 8);
    putBytes(out, std::bit_cast<std::uint32_t>(info.appliedVolume), 4);
    for (std::int32_t value :
         {info.favoriteCount, info.FADE_DURATION_MS, info.rawFav, info.rawMIDI, info.rawMP3,
          info.rawTracker, info.rawRadio, info.songsBeforeSoundfontChange, info.songPlayDurationMin,
          info.songPlayDurationMax, info.iSongPlayDurationMin, info.iSongPlayDurationMax,
          info.playingSong, info.playingPlaylist})
        putInt(out, value);
    putDouble(out, info.segmentEnd);
    putDouble(out, info.segmentStart);
    putInt(out, info.stationMode);
    return out;
}

void writeSongInfo(GameLinkState& st) {
    if (st.marbleTunnelPath.empty())
        return;
    // 33 writes a second: a file that stays unwritable is named once, not in every tick.
    if (st.gameFolder.overwrite(st.marbleTunnelPath, "songInfo.txt", encodeSongInfo(st.songInfo))) {
        st.songInfoUnwritable = false;
    } else if (!st.songInfoUnwritable) {
        logErr("Unable to open file for writing: %s\n", songInfoPath(st).c_str());
        st.songInfoUnwritable = true;
    }
}
