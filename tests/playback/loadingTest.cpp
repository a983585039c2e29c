#include "playback/loading.h"

#include "core/playerState.h"
#include "engineFixture.h"
#include "library/model.h"
#include "playback/audioSetup.h"
#include "playback/soundfonts.h"
#include "settings/jsonFile.h"
#include "support/currentDirectory.h"
#include "support/recordingPlatform.h"

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

namespace {

// A player whose library holds the given files, one playlist, the engine on its null output.
class Loading : public NullEngine {
  protected:
    void addSongs(const std::vector<std::string>& files) {
        Playlist playlist;
        playlist.albumName = "Album";
        for (const std::string& file : files)
            playlist.songs.push_back(songOf(file));
        playlist.songCount = static_cast<int>(playlist.songs.size());
        st.playlists.push_back(playlist);
        recountLibrary(st);
        st.scanSongCount = st.totalSongCount;
        st.scanPlaylistCount = 1;
    }
    std::string captured(const std::function<void()>& work) {
        testing::internal::CaptureStdout();
        work();
        return testing::internal::GetCapturedStdout();
    }

    PlayerState st;
};

TEST_F(Loading, TheFirstSongGoesToBothFieldsAndFadesInAtItsSegment) {
    addSongs({sine("only.flac", 120.0)});
    st.FADE_DURATION_MS = 1000;
    std::string log = captured([&] { startPlayback(st); });
    EXPECT_NE(log.find("Loading next song/radio into musicStreamNext.\n"), std::string::npos);
    ASSERT_NE(st.musicStream, 0u);
    EXPECT_EQ(st.musicStream, st.musicStreamNext);
    EXPECT_FALSE(st.nextSlotActive);
    EXPECT_EQ(st.playlists[0].songs[0].playCount, 1);
    EXPECT_EQ(st.songTitle, "Only");
    EXPECT_EQ(channelIsActive(st.musicStream), ChannelState::Playing);
    // The channel stands at the drawn start, and the slide is half way after half the fade.
    double start = channelBytesToSeconds(st.musicStream, channelGetPosition(st.musicStream));
    EXPECT_NEAR(start, st.segmentStart, 0.001);
    EXPECT_GT(st.segmentEnd, st.segmentStart);
    nullOutputPull(22050);
    float volume = 0;
    channelGetVolume(st.musicStream, volume);
    EXPECT_NEAR(volume, st.volume / 2, 1e-5);
}

TEST_F(Loading, AModuleLoadedIntoTheMainSlotIsAlreadyPlaying) {
    addSongs({module("a.mod")});
    st.nextSlotActive = true;
    ChannelHandle handle = loadTracker(st, SongRef{0, 0});
    ASSERT_NE(handle, 0u);
    EXPECT_EQ(st.trackerStream, handle);
    EXPECT_EQ(channelIsActive(handle), ChannelState::Playing);
    float volume = 0;
    channelGetVolume(handle, volume);
    EXPECT_EQ(volume, st.volume);
}

TEST_F(Loading, AFileThatDoesNotDecodeStillCountsAPlayAndKeepsTheOldTitle) {
    std::string bad = path("bad.mp3");
    std::ofstream(bad) << "not audio at all";
    addSongs({bad});
    st.songTitle = "Before";
    std::string log = captured([&] { EXPECT_EQ(loadStream(st, SongRef{0, 0}), 0u); });
    EXPECT_NE(log.find("Error creating musicStreamNext. Error code: 41\n"), std::string::npos);
    EXPECT_EQ(st.playlists[0].songs[0].playCount, 1);
    EXPECT_EQ(st.songFilePath, bad);
    EXPECT_EQ(st.songTitle, "Before");
}

TEST_F(Loading, IndicesOutsideTheLibraryAreLoggedAndLoadNothing) {
    addSongs({sine("a.flac", 1.0)});
    std::string log = captured([&] {
        EXPECT_EQ(loadStream(st, SongRef{3, 0}), 0u);
        EXPECT_EQ(loadTracker(st, SongRef{0, 7}), 0u);
    });
    EXPECT_NE(log.find("Error: Invalid playlist index.\n"), std::string::npos);
    EXPECT_NE(log.find("Error: Invalid song index.\n"), std::string::npos);
    EXPECT_EQ(st.playingSong, 7); // the module loader names the song before it checks it
}

TEST_F(Loading, APathLongerThanTwoHundredSixtyCharactersLoadsWhole) {
    std::string folder = std::string(120, 'a') + "/" + std::string(120, 'b');
    std::filesystem::create_directories(dir.path() / folder);
    std::string file = sine(folder + "/" + std::string(40, 'c') + ".flac", 1.0);
    ASSERT_GT(file.size(), 260u);
    addSongs({file});
    EXPECT_NE(loadStream(st, SongRef{0, 0}), 0u);
    EXPECT_EQ(st.songFilePath, file);
}

// The soundfont set-up of the start-up, in a game folder with its data folder.
class StartupFonts : public NullEngine {
  protected:
    void SetUp() override {
        NullEngine::SetUp();
        std::filesystem::create_directories(dir.path() / "game/data");
        st.dataDirectory = path("game/data");
    }
    void runSetUp() {
        ScopedCurrentDirectory cwd(st.dataDirectory);
        testing::internal::CaptureStderr();
        setUpStartupSoundFonts(st);
        testing::internal::GetCapturedStderr();
    }
    void addFont(const std::string& folder) {
        std::filesystem::create_directories(dir.path() / folder);
        std::filesystem::copy_file(timidityFont, dir.path() / folder / "TimGM6mb.sf2");
    }

    PlayerState st;
    RecordingPlatform platform;
};

TEST_F(StartupFonts, AFontInTheFolderOfTheConfigBecomesTheDefault) {
    addFont("fonts");
    writeJsonFile(st.dataDirectory + "/config.json",
                  {{"soundFontDirectoryPath", path("fonts")}, {"marbleTunnelPath", "/elsewhere"}});
    runSetUp();
    EXPECT_TRUE(platform.boxes.empty());
    EXPECT_EQ(st.soundFonts, std::vector<std::string>{path("fonts/TimGM6mb.sf2")});
    EXPECT_EQ(st.soundFontCount, 1);
    EXPECT_EQ(st.marbleTunnelPath, "/elsewhere");
    MidiFontRecord record;
    ASSERT_EQ(midiStreamGetFonts(0, &record, 1), 1);
    EXPECT_EQ(record.font, st.soundFontMain);
}

TEST_F(StartupFonts, WithoutAConfigTheGamesFolderIsTriedAndRemembered) {
    addFont("game/HarpTone/SoundFonts");
    runSetUp();
    EXPECT_TRUE(platform.boxes.empty());
    EXPECT_NE(st.soundFontMain, 0u);
    auto config = readJsonFile(st.dataDirectory + "/config.json");
    ASSERT_TRUE(config);
    EXPECT_EQ((*config)["soundFontDirectoryPath"], path("game/HarpTone/SoundFonts"));
    EXPECT_EQ((*config)["marbleTunnelPath"], path("game"));
}

TEST_F(StartupFonts, NoFontAnywhereOrABadOneEachGiveTheirBox) {
    runSetUp();
    ASSERT_EQ(platform.boxes.size(), 1u);
    EXPECT_EQ(platform.boxes[0].text, "No soundfont files found.");
    EXPECT_EQ(platform.boxes[0].title, "Error");
    EXPECT_FALSE(platform.boxes[0].owned);

    std::filesystem::create_directories(dir.path() / "game/HarpTone/SoundFonts");
    std::ofstream(path("game/HarpTone/SoundFonts/broken.sf2")) << "not a soundfont";
    runSetUp();
    ASSERT_EQ(platform.boxes.size(), 2u);
    EXPECT_EQ(platform.boxes[1].text, "Failed to load the selected soundfont.");
    EXPECT_EQ(st.soundFontMain, 0u);
}

} // namespace

namespace {

TEST(AudioInit, ADeviceThatCannotOpenGivesItsBoxAndEveryLoadFailsAfter) {
    const char* before = std::getenv("SDL_AUDIODRIVER");
    std::string saved = before ? before : "";
    setenv("SDL_AUDIODRIVER", "no-such-driver", 1);
    PlayerState st;
    RecordingPlatform platform;
    testing::internal::CaptureStdout();
    initAudioAtStartup(st);
    ChannelHandle handle = streamCreateFile("/nowhere/a.mp3");
    testing::internal::GetCapturedStdout();
    before ? setenv("SDL_AUDIODRIVER", saved.c_str(), 1) : unsetenv("SDL_AUDIODRIVER");
    ASSERT_EQ(platform.boxes.size(), 1u);
    EXPECT_EQ(platform.boxes[0].text, "Failed to initialize BASS library!");
    EXPECT_FALSE(platform.boxes[0].owned);
    EXPECT_EQ(handle, 0u);
    EXPECT_EQ(engineErrorCode(), EngineError::Init);
}

TEST_F(Loading, StopAllStreamsFreesBothSlotsAndFreeAudioEndsTheEngine) {
    addSongs({sine("a.flac", 2.0), module("b.mod")});
    st.musicStream = loadStream(st, SongRef{0, 0});
    st.nextSlotActive = true;
    st.trackerStream = loadTracker(st, SongRef{0, 1});
    stopAllStreams(st);
    EXPECT_EQ(channelGetLength(st.musicStream), noPosition);
    EXPECT_EQ(channelGetLength(st.trackerStream), noPosition);
    ChannelHandle again = loadStream(st, SongRef{0, 0});
    ASSERT_NE(again, 0u);
    freeAudio(st);
    EXPECT_EQ(channelGetLength(again), noPosition);
    EXPECT_EQ(streamCreateFile(st.playlists[0].songs[0].songPath), 0u);
    ASSERT_TRUE(engineInit(AudioOutput::Null)); // for the fixture's own tear-down
    pluginLoad("BASSFLAC.dll");
}

} // namespace
