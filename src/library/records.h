#pragma once
#include <string>
#include <vector>

// Family of a song. The values are stored in files and history rows, so they never change.
using MusicType = int;
constexpr MusicType musicTypeUnknown = -1;
constexpr MusicType musicTypeMidi = 0;
constexpr MusicType musicTypeMp3 = 1;
constexpr MusicType musicTypeTracker = 2;
constexpr MusicType musicTypeStation = 3;

struct Song {
    std::string songPath;
    int isFavorite = 0;
    int playCount = 0;
    int favoriteCount = 0;
    MusicType musicType = musicTypeUnknown;
};

struct Playlist {
    std::string albumName;
    std::vector<Song> songs;
    int songCount = 0;
    int iRadioMode = 0;
    int favoriteCount = 0;
    int isFavorite = 0;
};

// A song by position; valid until the next rebuild of the library.
struct SongRef {
    int plistIndex = 0;
    int songIndex = 0;
    friend bool operator==(const SongRef&, const SongRef&) = default;
};

// songType holds the MusicType itself (3 for a station), unlike FavoriteEntry.
struct HistoryEntry {
    int songType = 0;
    int songIndex = 0;
    int plistIndex = 0;
    friend bool operator==(const HistoryEntry&, const HistoryEntry&) = default;
};

struct RadioStation {
    std::string name;
    std::string url;
    int favorite = 0;
    int favoriteCount = 0;
};

// songType uses the favourites' numbering: 1 MIDI, 3 MP3, 4 Tracker, 0 anything else.
struct FavoriteEntry {
    int songType = 0;
    int songIndex = 0;
    int plistIndex = 0;
    int favoriteCount = 0;
    std::string songPath;
};
