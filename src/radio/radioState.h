#pragma once
#include "library/records.h"
#include "playback/playbackState.h"
#include "util/randomSources.h"

#include <vector>

// stationMode: what the radio plays.
constexpr int stationModePlaylist = 0; // one playlist, song after song
constexpr int stationModeRadio = 1;
constexpr int stationModeTop40 = 2;
constexpr int stationModeUndiscovered = 3;
constexpr int stationModeStation = 4; // one internet station
// builtInStation: the favourites filter of the three built-in stations.
constexpr int builtInAllSongs = 0;
constexpr int builtInFavorites = 1;
constexpr int builtInUndiscovered = 2;
// historyNavigation: the walk through the history.
constexpr int historyWalkOff = 0;
constexpr int historyWalkForward = 1; // the next transition plays the following row
constexpr int historyWalkBack = 2;    // it plays the row just stepped back to

// The decisions of the radio: what plays next and for how long.
struct RadioState : PlaybackState {
    // --- Settings of the draw and of the segments.
    int songPlayDurationMin = 45;
    int songPlayDurationMax = 110;
    int iSongPlayDurationMin = 60;
    int iSongPlayDurationMax = 180;
    int historyDepth = 20;

    // --- Listening.
    int stationMode = stationModeRadio;
    int builtInStation = builtInAllSongs;
    int shuffle = 1;
    int modePlaylist = 0;
    int modeSongIndex = 0;
    int historyNavigation = historyWalkOff;
    bool firstFamilyPick = true;
    // A load that failed in a radio mode, or a station that ended: when the radio moves on
    // (player clock, ms); -1 when none waits.
    std::int64_t loadRetryAtMs = -1;
    bool firstSongPick = true;
    bool firstPlainPick = true;
    bool hasMusicFolders = true;
    int requestedPlaylist = 0;
    int requestedSong = 0;
    bool playRequested = false;
    int savedRawRadio = 0;
    bool savedRawRadioTaken = false;
    bool noFamilyDrawn = false; // the last family draw met negative ratios
    LazyMt19937 familyRng;
    LazyMt19937 selectionRng;
    LazyMt19937 stationTimeRng;
    Rand15 rand15;

    // --- The search page, which a transition plays from while it is open.
    bool searchActive = false;
    std::vector<SongRef> searchResults;
    int searchRow = 0;

    // --- The segment of what plays, and where it stands.
    double segmentStart = 0.0;
    double segmentEnd = 0.0;
    double positionSeconds = 0.0;
    double lengthSeconds = 0.0;
    std::uint64_t positionBytes = 0; // as the engine gave them, for the game's song file
    std::uint64_t lengthBytes = 0;
};
