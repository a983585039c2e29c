#include "playback/loading.h"

#include "core/audioStart.h"
#include "core/playerState.h"
#include "core/transport.h"
#include "playback/audioSetup.h"
#include "playback/radioFixture.h"
#include "playback/soundfonts.h"
#include "support/currentDirectory.h"
#include "util/jsonFile.h"

#include <filesystem>
#include <nlohmann/json.hpp>
#include <tuple>

namespace {

using Loading = Radio;

// The song's path is longer than 260 characters, which must not cut it.
TEST_F(Loading, TheFirstSongGoesToBothFieldsWholeAndFadesInAtItsSegment) {
    std::string folder = std::string(120, 'a') + "/" + std::string(120, 'b');
    dir.mkdir(folder);
    std::string file = sine(folder + "/only.flac", 120.0);
    ASSERT_GT(file.size(), 260u);
    addPlaylists({file});
    st.FADE_DURATION_MS = 1000;
    st.songPlayDurationMax = 110;
    std::string log = logOf([&] { startPlayback(st); });
    EXPECT_NE(log.find("Loading next song/radio into musicStreamNext.\n"), std::string::npos);
    ASSERT_NE(st.musicStream, 0u);
    EXPECT_EQ(std::tie(st.musicStreamNext, st.playlists[0].songs[0].playCount, st.songTitle,
                       st.songFilePath),
              std::tuple(st.musicStream, 1, "Only", file));
    EXPECT_EQ(channelIsActive(st.musicStream), ChannelState::Playing);
    // The channel stands at the drawn start, and the slide is half way after half the fade.
    double start = channelBytesToSeconds(st.musicStream, channelGetPosition(st.musicStream));
    EXPECT_NEAR(start, st.segmentStart, 0.001);
    EXPECT_GT(st.segmentEnd, st.segmentStart);
    nullOutputPull(22050);
    EXPECT_NEAR(volumeOf(st.musicStream), st.volume / 2, 1e-5);
}

TEST_F(Loading, FailedLoadsAreLoggedAndABadFileStillCountsAPlayAndKeepsTheOldTitle) {
    std::string bad = dir.write("bad.mp3", "not audio at all").string();
    addPlaylists({bad});
    st.songTitle = "Before";
    std::string log = logOf([&] {
        EXPECT_EQ(loadStream(st, SongRef{0, 0}), 0u);
        EXPECT_EQ(loadStream(st, SongRef{3, 0}), 0u);
        EXPECT_EQ(loadTracker(st, SongRef{0, 7}), 0u);
    });
    EXPECT_NE(log.find("Error creating musicStreamNext. Error code: 41\n"), std::string::npos);
    EXPECT_NE(log.find("Error: Invalid playlist index.\n"), std::string::npos);
    EXPECT_NE(log.find("Error: Invalid song index.\n"), std::string::npos);
    // The module loader names the song before it checks it.
    EXPECT_EQ(
        std::tie(st.playlists[0].songs[0].playCount, st.songFilePath, st.songTitle, st.playingSong),
        std::tuple(1, bad, "Before", 7));
}

TEST_F(Loading, AModuleInTheMainSlotPlaysAtOnceAndStopAllThenFreeAudioReleaseEverything) {
    addPlaylists({sine("a.flac", 2.0), module("b.mod")});
    st.musicStream = loadStream(st, SongRef{0, 0});
    st.nextSlotActive = true;
    st.trackerStream = loadTracker(st, SongRef{1, 0});
    ASSERT_NE(st.trackerStream, 0u);
    EXPECT_EQ(channelIsActive(st.trackerStream), ChannelState::Playing);
    EXPECT_EQ(volumeOf(st.trackerStream), st.volume);

    stopAllStreams(st);
    EXPECT_TRUE(isFreed(st.musicStream) && isFreed(st.trackerStream));
    ChannelHandle again = loadStream(st, SongRef{0, 0});
    ASSERT_NE(again, 0u);
    freeAudio(st);
    EXPECT_TRUE(isFreed(again));
    EXPECT_EQ(streamCreateFile(st.playlists[0].songs[0].songPath), 0u);
    ASSERT_TRUE(engineInit(AudioOutput::Null)); // for the fixture's own tear-down
    pluginLoad("BASSFLAC.dll");
}

// The soundfont set-up of the start-up, run in the data folder of a game folder.
using StartupFonts = NullEngine;

TEST_F(StartupFonts, TheConfigFolderThenTheGamesFolderAreTriedAndEachFailureGivesItsBox) {
    PlayerState st;
    RecordingPlatform platform;
    st.dataDirectory = dir.mkdir("game/data").string();
    auto runSetUp = [&] {
        ScopedCurrentDirectory cwd(st.dataDirectory);
        errorsOf([&] { setUpStartupSoundFonts(st); });
    };
    runSetUp();
    ASSERT_EQ(platform.boxes.size(), 1u);
    EXPECT_EQ(std::tie(platform.boxes[0].text, platform.boxes[0].title, platform.boxes[0].owned),
              std::tuple("No soundfont files found.", "Error", false));

    std::string games = path("game/HarpTone/SoundFonts");
    dir.write("game/HarpTone/SoundFonts/broken.sf2", "not a soundfont");
    runSetUp();
    ASSERT_EQ(platform.boxes.size(), 2u);
    EXPECT_EQ(platform.boxes[1].text, "Failed to load the selected soundfont.");
    EXPECT_EQ(st.soundFontMain, 0u);

    // Without a config naming fonts the game's folder is tried, and remembered.
    std::filesystem::remove(games + "/broken.sf2");
    std::filesystem::copy_file(timidityFont, games + "/TimGM6mb.sf2");
    runSetUp();
    EXPECT_EQ(platform.boxes.size(), 2u);
    EXPECT_NE(st.soundFontMain, 0u);
    EXPECT_EQ(
        readJsonFile(st.dataDirectory + "/config.json"),
        (nlohmann::json{{"soundFontDirectoryPath", games}, {"marbleTunnelPath", path("game")}}));

    // A font in the config's folder comes first and becomes the default of every MIDI stream.
    std::filesystem::copy_file(timidityFont, dir.mkdir("fonts") / "TimGM6mb.sf2");
    writeJsonFile(st.dataDirectory + "/config.json",
                  {{"soundFontDirectoryPath", path("fonts")}, {"marbleTunnelPath", "/elsewhere"}});
    runSetUp();
    EXPECT_EQ(platform.boxes.size(), 2u);
    EXPECT_EQ(st.soundFonts, std::vector<std::string>{path("fonts/TimGM6mb.sf2")});
    EXPECT_EQ(st.marbleTunnelPath, "/elsewhere");
    MidiFontRecord record;
    ASSERT_EQ(midiStreamGetFonts(0, &record, 1), 1);
    EXPECT_EQ(record.font, st.soundFontMain);
}

TEST(AudioInit, ADeviceThatCannotOpenGivesItsBoxAndEveryLoadFailsAfter) {
    const char* before = std::getenv("SDL_AUDIODRIVER");
    std::string saved = before ? before : "";
    setenv("SDL_AUDIODRIVER", "no-such-driver", 1);
    PlayerState st;
    RecordingPlatform platform;
    ChannelHandle handle = 1;
    logOf([&] {
        initAudioAtStartup(st);
        handle = streamCreateFile("/nowhere/a.mp3");
    });
    before ? setenv("SDL_AUDIODRIVER", saved.c_str(), 1) : unsetenv("SDL_AUDIODRIVER");
    ASSERT_EQ(platform.boxes.size(), 1u);
    EXPECT_EQ(std::tie(platform.boxes[0].text, platform.boxes[0].owned),
              std::tuple("Failed to initialize BASS library!", false));
    EXPECT_EQ(handle, 0u);
    EXPECT_EQ(engineErrorCode(), EngineError::Init);
}

} // namespace
