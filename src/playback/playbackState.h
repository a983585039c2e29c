#pragma once
#include "library/libraryState.h"
#include "library/records.h"
#include "playback/engine/engine.h"
#include "playback/engine/handle.h"
#include "playback/loudnessState.h"
#include "util/randomSources.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

class FadeClock;

// volumeToggleState: which preset the volume toggle last stepped to.
constexpr int volumeToggleNone = 0;
constexpr int volumeToggleLow = 1;
constexpr int volumeToggleHigh = 2;

// The two slots, the fade-out workers, the volume and the soundfonts. The atomics, the mutexes
// and the four channel fields are shared with the fade-out workers.
struct PlaybackState : LibraryState {
    // --- Settings of the sound.
    float volume = 0.5f;
    float lowVolume = 0.1f;
    float highVolume = 0.8f;
    int FADE_DURATION_MS = 8000;
    int songsBeforeSoundfontChange = 1;
    int volumeToggleState = volumeToggleNone;
    float appliedVolume = 0.0f;

    // Where the audio goes at every start of the audio: the device, or the null output that a
    // soak or a test pulls from, so that Stop and Start keep to it.
    AudioOutput audioOutput = AudioOutput::Device;

    // --- What plays: its family, and the song or station it came from.
    MusicType currentMusicType = 0;
    MusicType previousMusicType = 0;
    bool onStation = false;
    int currentStation = 0;
    int playingPlaylist = 0;
    int playingSong = 0;
    std::string songTitle;
    std::string songFilePath;
    ChannelHandle activeHandle = 0;

    // --- The two slots: the main pair and the Next pair, each a stream and a module.
    ChannelHandle musicStream = 0;
    ChannelHandle musicStreamNext = 0;
    ChannelHandle trackerStream = 0;
    ChannelHandle trackerStreamNext = 0;
    // The station test's connection (the station probe): only its tags are read, never played.
    ChannelHandle testStream = 0;
    std::atomic<bool> nextSlotActive{false};
    std::atomic<int> fadeWorkerRunning{0};
    std::mutex streamMutex;
    // The fade-out workers' sleep: what they sleep by, when each is due, and their wake-up call.
    FadeClock* fadeClock = nullptr; // null: the steady clock
    std::mutex fadeSleepLock;
    std::condition_variable fadeWake;
    std::vector<std::int64_t> fadeDeadlines; // one per living worker
    bool fadeWorkersEnding = false;

    // --- The tags of a station.
    std::string stationName;
    std::string stationGenre;
    std::string streamTitle;
    std::string previousStationName;
    // The texts of the last "Station:" line, so a refresh logs only what changed.
    std::string loggedStationName;
    std::string loggedStationGenre;
    std::string loggedStreamTitle;

    // --- Soundfonts.
    std::string soundFontDirectoryPath;
    std::vector<std::string> soundFonts;
    int soundFontCount = 0;
    int currentSoundFont = 0;
    FontHandle soundFontMain = 0;
    FontHandle soundFontNext = 0;
    int soundFontIndexMain = 0; // the font the rotation last gave to each slot
    int soundFontIndexNext = 0;
    int songsSinceFontChange = 0;
    // Set-up and rescan each seed it anew, from this seed when a test fixed one (not 0), else
    // from the system's non-deterministic source.
    LazyMt19937 soundFontRng;
    std::uint32_t soundFontSeed = 0;

    // --- Loudness levelling: every song near one loudness, measured in the background.
    LoudnessState loudness;
};
