#pragma once
#include "library/records.h"
#include "library/searchIndex.h"

#include <array>
#include <string>
#include <vector>

// The player's state is one record built in layers, each subsystem's fields beside its code:
// LibraryState <- PlaybackState <- RadioState <- InputState <- DisplayState <- GameLinkState <-
// SettingsState <- LibraryState. A function takes the layer it works on, so it sees its own fields
// and those below, never those of a subsystem above it. Every field starts at its built-in
// default, and all of them are touched on the user-interface thread only, unless a field says
// otherwise.
struct LibraryState {
    LibraryState() = default;
    LibraryState(const LibraryState&) = delete;
    LibraryState& operator=(const LibraryState&) = delete;

    // --- Where the player's files and the music are.
    std::string dataDirectory;
    std::string libraryCachePath = "musicLibraryCache.json";
    std::vector<std::string> directoryPaths; // the library's root folders
    // The songs' texts for the type-ahead search, made when the page opens; whatever replaces
    // playlists drops it.
    SearchIndex searchIndex;
    // Each root the last scan could not read, as "path (reason)"; the Folder dialog names them,
    // since the log is nothing a desktop user sees.
    std::vector<std::string> unreadableRoots;

    // --- The family ratios: the recount zeroes the ratio of a family without songs.
    int rawMIDI = 50;
    int rawMP3 = 50;
    int rawTracker = 50;
    int rawFav = 50;
    int rawRadio = 20;

    // --- The library.
    std::vector<Playlist> playlists;
    std::vector<FavoriteEntry> favorites;
    std::vector<RadioStation> radioStations;
    std::vector<HistoryEntry> songHistory;
    int historyPosition = 0;
    int historyEnd = 0;
    int totalSongCount = 0;
    int midiSongCount = 0;
    int mp3SongCount = 0;
    int trackerSongCount = 0;
    int favoriteSongCount = 0;
    int stationCount = 0;
    int playlistCount = 0;
    int scanSongCount = 0;
    int scanPlaylistCount = 0;
    int weightedSongTotal = 0;
    std::array<std::string, 3> builtInStationNames = {
        "Marble Tunnel Radio", "Marble Tunnel: Top 40: All Hits, All the Time",
        "Marble Tunnel: Undiscovered Tracks"};
    // Set while the Folder dialog has emptied the library: the game link and the song counters on
    // the screen pause.
    bool libraryEditInProgress = false;
    // The headline and the folder of the song on show, as the path line made them.
    std::string currentFolderTitle;
    std::string lcdTitle;

    // --- Repaint requests, raised by whichever layer changed what the screen shows and served by
    // the next tick of the repaint timer.
    bool lcdDirty = false;
    bool buttonsDirty = false;
    bool songInfoDirty = false; // the Song Information window
};
