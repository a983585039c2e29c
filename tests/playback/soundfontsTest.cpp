#include "playback/soundfonts.h"

#include "core/audioStart.h"
#include "playback/radioFixture.h"
#include "util/jsonFile.h"

#include <filesystem>
#include <nlohmann/json.hpp>
#include <tuple>

namespace {

// A radio on two fonts (two copies of TimGM6mb), set up as the start-up does, with a MIDI song,
// a second MIDI song and a FLAC song, each in a playlist of its own.
class Fonts : public Radio {
  protected:
    void SetUp() override {
        Radio::SetUp();
        std::filesystem::copy_file(timidityFont, dir.mkdir("fonts") / "a.sf2");
        std::filesystem::copy_file(timidityFont, path("fonts/b.sf2"));
        st.dataDirectory = dir.mkdir("data").string();
        writeJsonFile(st.dataDirectory + "/config.json",
                      {{"soundFontDirectoryPath", path("fonts")}, {"marbleTunnelPath", ""}});
        st.soundFontDirectoryPath = path("fonts");
        st.soundFontSeed = 5;
        st.directoryPaths = {dir.str()};
        addPlaylists({midi("a.mid", 30.0), midi("b.mid", 30.0), sine("c.flac", 30.0)});
        logOf([&] { ASSERT_EQ(setUpSoundFonts(st), FontBox::None); });
    }
    // Transitions to the songs of the families named ('m' MIDI, 'f' FLAC); the log of them.
    std::string play(const std::string& families) {
        return logOf([&] {
            for (char family : families)
                transition(family == 'f' ? 2 : midiSongs++ % 2);
        });
    }
    static int countOf(const std::string& log, const std::string& line) {
        int count = 0;
        for (auto at = log.find(line); at != std::string::npos; at = log.find(line, at + 1))
            ++count;
        return count;
    }
    // The stream of the song that came last.
    ChannelHandle incoming() const {
        return st.nextSlotActive ? st.musicStreamNext : st.musicStream;
    }
    int midiSongs = 0;
};

// Only MIDI songs count; every change names the stream and the file.
TEST_F(Fonts, TheIncomingSlotChangesFontEverySoManyMidiSongs) {
    struct Case {
        int every;
        std::string families;
        int changes;
        int sinceChange;
    } cases[] = {{1, "mmm", 3, 0}, {3, "mmfmmfmm", 2, 0}, {3, "mfm", 0, 2}, {0, "mmmm", 0, 4}};
    for (const Case& c : cases) {
        st.songsBeforeSoundfontChange = c.every;
        st.songsSinceFontChange = 0;
        st.currentSoundFont = 1;
        std::string log = play(c.families);
        EXPECT_EQ(countOf(log, "Sound font for musicStream"), c.changes) << c.families;
        EXPECT_EQ(st.songsSinceFontChange, c.sinceChange) << c.families;
        if (c.changes == 0) {
            EXPECT_EQ(st.currentSoundFont, 1);
        }
        EXPECT_TRUE(streamHasFont(incoming())) << c.families;
    }
}

TEST_F(Fonts, OneFontIsDrawnEachTimeAndOpenedAgain) {
    std::filesystem::remove(path("fonts/b.sf2"));
    setUpSoundFonts(st);
    st.currentSoundFont = 1;
    std::string log = play("mm");
    EXPECT_EQ(countOf(log, "Sound font for musicStream"), 2);
    EXPECT_EQ(std::tie(st.currentSoundFont, st.soundFontIndexMain, st.soundFontIndexNext),
              std::tuple(0, 0, 0));
}

// The third MIDI song frees the set-up's font from the main slot; a MIDI song after a FLAC song
// (no rotation, no repair) still plays on it.
TEST_F(Fonts, TheSetUpFontFreedByTheRotationStillServesTheStreamsToCome) {
    FontHandle setUp = st.soundFontMain;
    play("mmm");
    ASSERT_NE(st.soundFontMain, setUp);
    st.songsBeforeSoundfontChange = 5;
    play("fm");
    EXPECT_TRUE(streamHasFont(incoming()));
    advance(200); // the FLAC song has faded out
    EXPECT_GT(peak(advance(1000)), 0.01f);
}

// The rotation comes right after the incoming song starts, and its stream may have read ahead on
// the set-up font by then: from its first audible frame it sounds on its new font, while the
// outgoing song keeps its font through the fade.
TEST_F(Fonts, TheIncomingSongIsHeardOnItsNewFontFromItsStart) {
    std::filesystem::create_symlink(generalMidiFont, path("fonts/gm.sf2"));
    st.soundFonts = {path("fonts/gm.sf2")}; // the rotation's only draw; the set-up font is a.sf2
    st.soundFontCount = 1;
    st.songsBeforeSoundfontChange = 0;
    FontHandle setUp = st.soundFontMain;
    play("m");
    ChannelHandle outgoing = incoming();
    request(1);
    startTransition(st);
    nullOutputPull(1); // waits for the incoming stream's first audio, on the set-up font
    // The rotation as the transition runs it, before the slots flip.
    st.nextSlotActive = !st.nextSlotActive;
    st.songsBeforeSoundfontChange = st.songsSinceFontChange = 1;
    logOf([&] { rotateSoundFont(st); });
    st.nextSlotActive = !st.nextSlotActive;
    MidiFontRecord font{};
    ASSERT_EQ(midiStreamGetFonts(outgoing, &font, 1), 1);
    EXPECT_EQ(font.font, setUp);

    std::uint64_t from = channelGetPosition(incoming()) / 4; // 44100 Hz stereo, 16 bits
    channelStop(outgoing);
    channelSetVolume(incoming(), 1.0f);
    std::vector<float> heard = nullOutputPull(8192);
    EngineError error = EngineError::Unknown;
    std::unique_ptr<Decoder> straight = openMidiDecoder(
        st.playlists[1].songs[0].songPath, {loadSoundFont(generalMidiFont, error)}, error);
    ASSERT_TRUE(straight && straight->seek(from));
    std::vector<float> expected = renderFrames(*straight, 8192, 1024);
    EXPECT_LT(relativeDistance(heard, expected), 0.2);
}

TEST_F(Fonts, HandStepsWrapAndRefuseWhatTheyCannotLoad) {
    stepSoundFont(st, -1); // from 0 to the last
    EXPECT_EQ(st.currentSoundFont, 1);
    stepSoundFont(st, 1);
    EXPECT_EQ(st.currentSoundFont, 0);
    EXPECT_TRUE(platform.boxes.empty());
    FontHandle main = st.soundFontMain;
    EXPECT_EQ(selectSoundFont(st, 2), FontBox::BadIndex);
    st.soundFonts[1] = path("fonts/gone.sf2");
    logOf([&] { stepSoundFont(st, 1); });
    EXPECT_EQ(std::tie(st.currentSoundFont, st.soundFontMain), std::tuple(0, main));
    st.soundFonts.clear();
    stepSoundFont(st, 1);
    ASSERT_EQ(platform.boxes.size(), 2u);
    EXPECT_EQ(platform.boxes[0].text, "Failed to load the selected soundfont.");
    EXPECT_EQ(platform.boxes[1].text, "No soundfont files found.");
}

// Fonts deleted while the player runs: a hand step fails with its box and the rotation with its
// line, though their parses are still at hand; the songs play on with the fonts in memory, also
// through a seek, for which FluidSynth reads samples again.
TEST_F(Fonts, DeletedFontsFailTheNextHandStepAndRotationWhileTheSongsPlayOn) {
    play("m");
    logOf([&] {
        stepSoundFont(st, 1); // both fonts parsed
        stepSoundFont(st, 1);
        std::filesystem::remove_all(path("fonts"));
        stepSoundFont(st, 1);
    });
    ASSERT_EQ(platform.boxes.size(), 1u);
    EXPECT_EQ(platform.boxes[0].text, "Failed to load the selected soundfont.");
    channelSetPosition(incoming(), 0);
    EXPECT_GT(peak(advance(1000)), 0.01f);
    st.songsBeforeSoundfontChange = 1;
    std::string log = play("m");
    EXPECT_EQ(countOf(log, "Error loading sound font from " + path("fonts/")), 1) << log;
    EXPECT_GT(peak(advance(1000)), 0.01f);
}

// A slot whose stream refuses its new font recovers once the transition has let go of
// streamMutex: the Next slot by a rescan, the main slot by a restart of the audio.
TEST_F(Fonts, AFontTheStreamRefusesIsRecoveredWithoutDeadlock) {
    setenv("SDL_AUDIODRIVER", "dummy", 0); // the restart opens a device
    failStreamSetFonts(1);
    FontHandle before = st.soundFontMain;
    std::string log = play("m");
    EXPECT_EQ(countOf(log, "Error setting sound font for midiStreamNext: 4294967295\n"), 1);
    EXPECT_NE(st.soundFontMain, before);
    EXPECT_TRUE(streamHasFont(st.musicStream) && streamHasFont(st.musicStreamNext));

    failStreamSetFonts(1);
    log = play("m");
    EXPECT_EQ(countOf(log, "Error setting sound font for midiStream: 4294967295\n"), 1);
    EXPECT_EQ(channelIsActive(st.musicStream), ChannelState::Playing);
    EXPECT_FALSE(st.nextSlotActive);
    EXPECT_TRUE(platform.boxes.empty());
}

} // namespace
