#include "core/mediaControls.h"

#include "core/commands.h"
#include "core/playerState.h"
#include "core/transport.h"
#include "core/volume.h"
#include "library/model.h"
#include "playback/engine/engine.h"

#include <algorithm>
#include <cctype>
#include <cmath>

namespace {

double lengthSeconds(const PlayerState& st) {
    return channelBytesToSeconds(st.activeHandle, channelGetLength(st.activeHandle));
}

} // namespace

MediaSnapshot mediaSnapshot(const PlayerState& st) {
    MediaSnapshot snapshot;
    const TransportState state = transportState(st);
    snapshot.status = state == TransportState::Playing || state == TransportState::Crossfading
                          ? MediaStatus::Playing
                      : state == TransportState::Paused ? MediaStatus::Paused
                                                        : MediaStatus::Stopped;
    snapshot.hasSong = st.activeHandle != 0 && state != TransportState::AudioOff;
    snapshot.volume = static_cast<double>(st.volume);
    snapshot.canGoPrevious = st.historyPosition > 0;
    if (st.onStation) {
        snapshot.title = st.streamTitle;
        snapshot.album = st.stationName;
        if (const RadioStation* station = findStation(st, st.currentStation))
            snapshot.url = station->url;
    } else {
        snapshot.title = st.songTitle;
        snapshot.album = st.currentFolderTitle;
        if (!st.songFilePath.empty())
            snapshot.url = fileUrl(st.songFilePath);
        const double length = snapshot.hasSong ? lengthSeconds(st) : -1.0;
        if (length > 0) {
            snapshot.lengthUs = std::llround(length * 1e6);
            snapshot.canSeek = true;
        }
    }
    return snapshot;
}

std::int64_t mediaPositionUs(const PlayerState& st) {
    const double seconds =
        channelBytesToSeconds(st.activeHandle, channelGetPosition(st.activeHandle));
    return seconds > 0 ? std::llround(seconds * 1e6) : 0;
}

void mediaPlayPause(PlayerState& st) {
    runCommand(st, transportState(st) == TransportState::AudioOff ? command::start
                                                                  : command::playPause);
}

void mediaPlay(PlayerState& st) {
    const TransportState state = transportState(st);
    if (state == TransportState::AudioOff || state == TransportState::Idle)
        runCommand(st, command::start);
    else if (state == TransportState::Paused)
        runCommand(st, command::playPause);
}

void mediaPause(PlayerState& st) {
    const TransportState state = transportState(st);
    if (state == TransportState::Playing || state == TransportState::Crossfading)
        runCommand(st, command::playPause);
}

void mediaStop(PlayerState& st) {
    runCommand(st, command::stop);
}

void mediaNext(PlayerState& st) {
    runCommand(st, command::nextSong);
}

void mediaPrevious(PlayerState& st) {
    runCommand(st, command::previousSong);
}

bool mediaSeek(PlayerState& st, std::int64_t positionUs) {
    const MediaSnapshot snapshot = mediaSnapshot(st);
    if (!snapshot.canSeek || positionUs < 0 || positionUs > *snapshot.lengthUs)
        return false;
    seekActiveSong(st, static_cast<double>(positionUs) / 1e6);
    return true;
}

void mediaSetVolume(PlayerState& st, double volume) {
    if (!std::isfinite(volume))
        return;
    st.volume = static_cast<float>(std::clamp(volume, 0.0, 1.0));
    applyVolume(st);
}

std::string fileUrl(const std::string& path) {
    static constexpr char hex[] = "0123456789ABCDEF";
    std::string url = "file://";
    for (unsigned char c : path) {
        if (std::isalnum(c) || c == '/' || c == '-' || c == '.' || c == '_' || c == '~') {
            url += static_cast<char>(c);
        } else {
            url += '%';
            url += hex[c >> 4];
            url += hex[c & 15];
        }
    }
    return url;
}
