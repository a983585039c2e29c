#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

struct GameLinkState;

// What the game reads of the player, copied from the state at one moment. The names are the
// state's own; the position fields are those of the last read at a repaint.
struct SongInfo {
    std::string title;  // songTitle, or streamTitle on a station
    std::string folder; // currentFolderTitle, or stationName on a station
    double positionSeconds = -1.0;
    std::uint64_t lengthBytes = ~std::uint64_t{0};
    double lengthSeconds = -1.0;
    std::uint64_t positionBytes = ~std::uint64_t{0};
    float appliedVolume = 0.0f;
    std::int32_t favoriteCount = 0; // of the playing song or station; 0 when there is none
    std::int32_t FADE_DURATION_MS = 0;
    std::int32_t rawFav = 0;
    std::int32_t rawMIDI = 0;
    std::int32_t rawMP3 = 0;
    std::int32_t rawTracker = 0;
    std::int32_t rawRadio = 0;
    std::int32_t songsBeforeSoundfontChange = 0;
    std::int32_t songPlayDurationMin = 0;
    std::int32_t songPlayDurationMax = 0;
    std::int32_t iSongPlayDurationMin = 0;
    std::int32_t iSongPlayDurationMax = 0;
    std::int32_t playingSong = 0;
    std::int32_t playingPlaylist = 0;
    double segmentEnd = 0.0;
    double segmentStart = 0.0;
    std::int32_t stationMode = 0;
};

// The fixed part of the record: everything but the two texts.
constexpr std::size_t songInfoFixedBytes = 120;

// Takes the values of songInfo.txt from the state into st.songInfo.
void snapshotSongInfo(GameLinkState& st);
// The bytes of songInfo.txt: little-endian, no padding, each text a 32-bit byte count and its
// bytes without a terminator, then the numbers in the order of the record.
std::string encodeSongInfo(const SongInfo& info);
// Writes st.songInfo over songInfo.txt in place. A file that cannot be written is named on the
// error stream once, until a write succeeds again.
void writeSongInfo(GameLinkState& st);
