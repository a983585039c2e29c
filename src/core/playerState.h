#pragma once
#include "input/hotkeyBinding.h"
#include "library/records.h"
#include "playback/engine/handle.h"
#include "util/randomSources.h"

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

// Everything the running player knows. One instance lives for the whole process and is touched
// only by the user-interface thread, except the few atomics and the mutex of the transport that
// the fade-out worker shares. Every field starts at its built-in default.
class FadeClock;

struct PlayerState {
    PlayerState() = default;
    PlayerState(const PlayerState&) = delete;
    PlayerState& operator=(const PlayerState&) = delete;

    // --- Settings: one field per key of MusicSettings.json (volumeLevel is held in volume).
    std::vector<std::string> directoryPaths;
    float volume = 0.5f;
    float lowVolume = 0.1f;
    float highVolume = 0.8f;
    int songPlayDurationMin = 45;
    int songPlayDurationMax = 110;
    int iSongPlayDurationMin = 60;
    int iSongPlayDurationMax = 180;
    int FADE_DURATION_MS = 8000;
    int rawMIDI = 50;
    int rawMP3 = 50;
    int rawTracker = 50;
    int rawFav = 50;
    int rawRadio = 20;
    int songsBeforeSoundfontChange = 1;
    int historyDepth = 20;
    int textR = 255, textG = 255, textB = 255;
    int bkGrR = 35, bkGrG = 35, bkGrB = 35;
    int songR = 0, songG = 0, songB = 0;
    int windowAlpha = 255;
    int textureAlpha = 25;
    int bkTextureAlpha = 35;
    std::string currentBkTextureName = "wood";
    std::string currentLCDTextureName = "cement";
    int randomColorPlayer = 0;
    int borderlessAuto = 0;
    bool useRumble = true;
    bool useRumbleToggle = true;
    int rumbleTime = 500;
    int rumbleTimeToggle = 100;
    bool versionCheck = true;

    // --- Paths.
    std::string dataDirectory;
    std::string libraryCachePath = "musicLibraryCache.json";
    // Set by the start-up until MusicSettings.json has been read: a library save in that time
    // must not write the defaults over the stored settings.
    bool settingsSaveHeld = false;
    // Whether the settings read at start-up named the root folders (an empty list counts).
    bool storedRootsRead = false;
    std::string soundFontDirectoryPath;
    std::string marbleTunnelPath;
    std::string gameExePath;

    // --- The window. The handles are opaque to the logic: the platform host owns what they name.
    void* instanceHandle = nullptr;
    void* mainWindow = nullptr;
    void* mainMenu = nullptr;
    int clientWidth = 500;
    int clientHeight = 155;
    float scaleX = 1.0f;
    float scaleY = 1.0f;
    void* backBufferDC = nullptr;
    void* backBufferBitmap = nullptr;
    void* appIcon = nullptr;
    bool lcdDirty = false;
    bool buttonsDirty = false;

    // --- The library.
    std::vector<Playlist> playlists;
    std::vector<FavoriteEntry> favorites;
    std::vector<RadioStation> radioStations;
    std::vector<HistoryEntry> songHistory;
    int totalSongCount = 0;
    int midiSongCount = 0;
    int mp3SongCount = 0;
    int trackerSongCount = 0;
    int favoriteSongCount = 0;
    int stationCount = 0;
    int playlistCount = 0;
    int scanSongCount = 0;
    int scanPlaylistCount = 0;
    std::array<std::string, 3> builtInStationNames = {
        "Marble Tunnel Radio", "Marble Tunnel: Top 40: All Hits, All the Time",
        "Marble Tunnel: Undiscovered Tracks"};
    std::vector<std::string> listEntries;
    bool libraryEditInProgress = false;
    std::string currentFolderTitle;
    std::string lcdTitle;

    // --- Listening.
    int stationMode = 1;
    int builtInStation = 0;
    int shuffle = 1;
    int modePlaylist = 0;
    int modeSongIndex = 0;
    bool onStation = false;
    int currentStation = 0;
    MusicType currentMusicType = 0;
    MusicType previousMusicType = 0;
    int historyPosition = 0;
    int historyEnd = 0;
    int historyNavigation = 0;
    int weightedSongTotal = 0;
    bool firstFamilyPick = true;
    bool firstSongPick = true;
    bool firstPlainPick = true;
    bool hasMusicFolders = true;
    int playingPlaylist = 0;
    int playingSong = 0;
    int requestedPlaylist = 0;
    int requestedSong = 0;
    bool playRequested = false;
    int savedRawRadio = 0;
    bool savedRawRadioTaken = false;
    LazyMt19937 familyRng;
    LazyMt19937 selectionRng;
    Rand15 rand15;

    // --- Transport. The atomics and the mutex are shared with the fade-out worker.
    ChannelHandle musicStream = 0;
    ChannelHandle musicStreamNext = 0;
    ChannelHandle trackerStream = 0;
    ChannelHandle trackerStreamNext = 0;
    std::atomic<bool> nextSlotActive{false};
    std::atomic<int> fadeWorkerRunning{0};
    std::mutex streamMutex;
    // The fade-out workers' sleep: what they sleep by, when each is due, and their wake-up call.
    FadeClock* fadeClock = nullptr; // null: the steady clock
    std::mutex fadeSleepLock;
    std::condition_variable fadeWake;
    std::vector<std::int64_t> fadeDeadlines; // one per living worker
    bool fadeWorkersEnding = false;
    bool paintedSinceTick = false; // a repaint ran since the last tick of timer 1
    std::string songTitle;
    std::string songFilePath;
    ChannelHandle activeHandle = 0;
    double segmentStart = 0.0;
    double segmentEnd = 0.0;
    double positionSeconds = 0.0;
    double lengthSeconds = 0.0;
    std::uint64_t positionBytes = 0; // as the engine gave them, for the game's song file
    std::uint64_t lengthBytes = 0;
    int volumeToggleState = 0;
    float appliedVolume = 0.0f;
    std::string stationName;
    std::string stationGenre;
    std::string streamTitle;
    std::string previousStationName;

    // --- Soundfonts.
    std::vector<std::string> soundFonts;
    int soundFontCount = 0;
    int currentSoundFont = 0;
    FontHandle soundFontMain = 0;
    FontHandle soundFontNext = 0;
    int songsSinceFontChange = 0;

    // --- Screen state.
    int listPage = -1;
    int listKind = 0;
    bool searchActive = false;
    std::string searchText;
    std::vector<SongRef> searchResults;
    int searchRow = 0;
    bool volumeTextShown = false;
    bool volumeTimerArmed = false;
    bool songInfoDirty = false;

    // --- Input.
    std::array<HotkeyBinding, hotkeyRowCount> hotkeyTable{};
    bool volumeUpLatch = false;
    bool volumeDownLatch = false;
    std::array<void*, maxControllers> controllerHandles{};
    std::array<std::string, maxControllers> controllerNames{};
    int controllerCount = 0;
    int currentController = 0;
    std::string pressedButtonText;
};
