#include "engineFixture.h"

#include <atomic>
#include <fstream>
#include <thread>

namespace {

using Channels = NullEngine;

TEST_F(Channels, AZeroOrStaleHandleFailsEveryCallAndReadsAsMinusOneSecond) {
    ChannelHandle song = streamCreateFile(sine("a.flac", 1.0));
    ASSERT_NE(song, 0u);
    ASSERT_TRUE(streamFree(song));
    for (ChannelHandle bad : {ChannelHandle{0}, song}) {
        EXPECT_FALSE(channelPlay(bad));
        EXPECT_EQ(engineErrorCode(), EngineError::Handle);
        EXPECT_FALSE(channelSetVolume(bad, 0.5f));
        EXPECT_FALSE(channelSetPosition(bad, 0));
        EXPECT_EQ(channelIsActive(bad), ChannelState::Stopped);
        EXPECT_EQ(channelGetLength(bad), noPosition);
        EXPECT_EQ(channelGetPosition(bad), noPosition);
        EXPECT_EQ(channelBytesToSeconds(bad, 1000), -1.0);
        EXPECT_FALSE(streamFree(bad));
    }
    // The slot is used again, under a handle of its own.
    ChannelHandle again = streamCreateFile(sine("b.flac", 1.0));
    EXPECT_NE(again, song);
    EXPECT_FALSE(channelPlay(song));
    EXPECT_TRUE(channelPlay(again));
}

TEST_F(Channels, AfterFreeEveryCallFailsUntilTheNextInitAndOldHandlesStayStale) {
    std::string file = sine("a.flac", 1.0);
    ChannelHandle before = streamCreateFile(file);
    ASSERT_TRUE(engineFree());
    EXPECT_EQ(streamCreateFile(file), 0u);
    EXPECT_EQ(engineErrorCode(), EngineError::Init);
    EXPECT_EQ(midiFontInit(timidityFont), 0u);
    ASSERT_TRUE(engineInit(AudioOutput::Null));
    ChannelHandle after = streamCreateFile(file);
    EXPECT_NE(after, 0u);
    EXPECT_NE(after, before);
    EXPECT_EQ(channelGetLength(before), noPosition);
}

TEST_F(Channels, EveryFormatKnowsItsLengthWithinFiftyMilliseconds) {
    struct Case {
        ChannelHandle handle;
        double seconds;
    };
    std::vector<Case> cases = {
        {streamCreateFile(sine("a.mp3", 3.0)), 3.0},
        {streamCreateFile(sine("a.m4a", 3.0)), 3.0},
        {streamCreateFile(sine("a.flac", 3.0)), 3.0},
        {streamCreateFile(midi("a.mid", 4.0)), midiSeconds},
        {musicLoad(module("a.mod")), moduleSeconds},
    };
    for (const Case& c : cases) {
        ASSERT_NE(c.handle, 0u);
        double length = channelBytesToSeconds(c.handle, channelGetLength(c.handle));
        EXPECT_NEAR(length, c.seconds, 0.05);
    }
}

TEST_F(Channels, AFileStreamLoopsWhenItsEndIsHeard) {
    ChannelHandle song = streamCreateFile(sine("a.flac", 1.0));
    ASSERT_TRUE(channelPlay(song));
    nullOutputPull(44100 + 22050);
    EXPECT_EQ(channelGetPosition(song), frameBytes(0.5));
    EXPECT_EQ(channelIsActive(song), ChannelState::Playing);
}

TEST_F(Channels, AModuleStopsAtItsEndAndKeepsReportingItsLength) {
    ChannelHandle song = musicLoad(module("a.mod"));
    ASSERT_TRUE(channelPlay(song));
    nullOutputPull(static_cast<std::size_t>((moduleSeconds + 1.0) * 44100));
    EXPECT_EQ(channelIsActive(song), ChannelState::Stopped);
    EXPECT_EQ(channelGetPosition(song), channelGetLength(song));
    EXPECT_EQ(peak(nullOutputPull(4410)), 0.0f);
}

TEST_F(Channels, PauseHoldsThePositionAndPlayResumesWithoutRewinding) {
    ChannelHandle song = streamCreateFile(sine("a.flac", 5.0));
    ASSERT_TRUE(channelPlay(song));
    nullOutputPull(44100);
    ASSERT_TRUE(channelPause(song));
    EXPECT_EQ(channelIsActive(song), ChannelState::Paused);
    EXPECT_EQ(peak(nullOutputPull(44100)), 0.0f);
    EXPECT_EQ(channelGetPosition(song), frameBytes(1.0));
    ASSERT_TRUE(channelPlay(song));
    nullOutputPull(4410);
    EXPECT_EQ(channelGetPosition(song), frameBytes(1.1));
}

TEST_F(Channels, ASeekIsHeardAtOnceAndAPositionOutsideIsRefused) {
    ChannelHandle song = streamCreateFile(sine("a.flac", 4.0));
    ASSERT_TRUE(channelPlay(song));
    nullOutputPull(8820);
    ASSERT_TRUE(channelSetPosition(song, frameBytes(3.0)));
    EXPECT_EQ(channelGetPosition(song), frameBytes(3.0));
    nullOutputPull(4410);
    EXPECT_EQ(channelGetPosition(song), frameBytes(3.1));
    EXPECT_FALSE(channelSetPosition(song, channelGetLength(song) + 4));
    EXPECT_EQ(engineErrorCode(), EngineError::Position);
    EXPECT_EQ(channelGetPosition(song), frameBytes(3.1));
    EXPECT_EQ(channelSecondsToBytes(song, 2.0), frameBytes(2.0));
}

TEST_F(Channels, ASlideMovesSampleBySampleAndEndsOnItsTarget) {
    ChannelHandle song = streamCreateFile(sine("a.flac", 2.0));
    ASSERT_TRUE(channelSetVolume(song, 0.0f));
    ASSERT_TRUE(channelSlideVolume(song, 1.0f, 100)); // 4410 frames, set before play
    ASSERT_TRUE(channelPlay(song));
    std::vector<float> first = nullOutputPull(2205);
    float volume = -1.0f;
    ASSERT_TRUE(channelGetVolume(song, volume));
    EXPECT_FLOAT_EQ(volume, 0.5f);
    // Each sample carries the sine at the volume of its own frame.
    for (std::size_t i : {441u, 1000u, 2000u}) {
        double sine = 0.5 * std::sin(2 * M_PI * 441.0 * static_cast<double>(i) / 44100);
        EXPECT_NEAR(first[2 * i], sine * static_cast<double>(i) / 4410, 2e-3) << "frame " << i;
    }
    nullOutputPull(2205);
    ASSERT_TRUE(channelGetVolume(song, volume));
    EXPECT_EQ(volume, 1.0f);
    EXPECT_NEAR(peak(nullOutputPull(441)), 0.5f, 2e-3);
}

TEST_F(Channels, TwoSlidesRunAtTheSameTimeAndASetVolumeEndsOne) {
    ChannelHandle up = streamCreateFile(sine("up.flac", 2.0));
    ChannelHandle down = streamCreateFile(sine("down.flac", 2.0));
    channelSetVolume(up, 0.0f);
    channelSlideVolume(up, 1.0f, 200);
    channelSlideVolume(down, 0.0f, 200);
    channelPlay(up);
    channelPlay(down);
    nullOutputPull(4410);
    float upVolume = 0, downVolume = 0;
    channelGetVolume(up, upVolume);
    channelGetVolume(down, downVolume);
    EXPECT_FLOAT_EQ(upVolume, 0.5f);
    EXPECT_FLOAT_EQ(downVolume, 0.5f);
    channelSetVolume(down, 0.25f);
    nullOutputPull(4410);
    channelGetVolume(down, downVolume);
    EXPECT_EQ(downVolume, 0.25f);
}

TEST_F(Channels, StaleHandlesFromTwoThreadsAtOnceNeverReachANewChannel) {
    std::string file = sine("a.flac", 1.0);
    ChannelHandle stale = streamCreateFile(file);
    std::atomic<bool> done{false};
    std::thread worker([&] {
        while (!done) { // as a fade-out worker would, with a handle that goes stale
            channelStop(stale);
            channelSetVolume(stale, 0.0f);
            streamFree(stale);
        }
    });
    std::vector<ChannelHandle> fresh;
    for (int i = 0; i < 20; ++i) {
        ChannelHandle h = streamCreateFile(file);
        channelSetVolume(h, 0.75f);
        fresh.push_back(h);
    }
    done = true;
    worker.join();
    for (ChannelHandle h : fresh) {
        float volume = 0;
        ASSERT_TRUE(channelGetVolume(h, volume));
        EXPECT_EQ(volume, 0.75f);
    }
}

TEST_F(Channels, AMidiStreamWithoutAFontIsSilentAndKeepsItsTrueLength) {
    ChannelHandle song = streamCreateFile(midi("a.mid", 3.0));
    ASSERT_NE(song, 0u);
    EXPECT_EQ(midiStreamGetFonts(song, nullptr, 0), 0);
    EXPECT_NEAR(channelBytesToSeconds(song, channelGetLength(song)), midiSeconds, 0.05);
    channelPlay(song);
    EXPECT_EQ(peak(nullOutputPull(44100)), 0.0f);
}

TEST_F(Channels, TheDefaultFontIsCopiedIntoEveryNewMidiStream) {
    FontHandle font = midiFontInit(timidityFont);
    ASSERT_NE(font, 0u);
    MidiFontRecord record{font, -1, 0};
    ASSERT_TRUE(midiStreamSetFonts(0, &record, 1));
    ChannelHandle song = streamCreateFile(midi("a.mid", 3.0));
    MidiFontRecord got[2];
    ASSERT_EQ(midiStreamGetFonts(song, got, 2), 1);
    EXPECT_EQ(got[0].font, font);
    channelPlay(song);
    EXPECT_GT(peak(nullOutputPull(44100)), 0.01f);
    // Freed while the stream plays: the stream keeps what it renders from.
    EXPECT_TRUE(midiFontFree(font));
    EXPECT_GT(peak(nullOutputPull(44100)), 0.01f);
    EXPECT_FALSE(midiStreamSetFonts(streamCreateFile(sine("a.flac", 1.0)), &record, 1));
}

TEST_F(Channels, ABadFontFailsToLoad) {
    std::ofstream(path("bad.sf2")) << "RIFF but not a soundfont";
    EXPECT_EQ(midiFontInit(path("bad.sf2")), 0u);
    EXPECT_EQ(midiFontInit(path("missing.sf2")), 0u);
}

TEST_F(Channels, BadFilesFailToLoadWithALineAndNothingElseHappens) {
    std::string mp3 = sine("whole.mp3", 2.0);
    std::string cut = path("cut.mp3");
    {
        std::ifstream in(mp3, std::ios::binary);
        std::string head(200, '\0');
        in.read(head.data(), 200);
        std::ofstream(cut, std::ios::binary) << head;
    }
    std::ofstream(path("text.mid")) << "just some words, not music";
    std::string noise(4096, '\0');
    for (std::size_t i = 0; i < noise.size(); ++i)
        noise[i] = static_cast<char>(i * 7919 % 251);
    std::ofstream(path("noise.xm"), std::ios::binary) << noise;

    struct Case {
        std::string file;
        bool module;
    };
    for (const Case& c : {Case{cut, false}, Case{path("text.mid"), false},
                          Case{path("noise.xm"), true}, Case{path("missing.mp3"), false}}) {
        testing::internal::CaptureStdout();
        ChannelHandle h = c.module ? musicLoad(c.file) : streamCreateFile(c.file);
        std::string log = testing::internal::GetCapturedStdout();
        EXPECT_EQ(h, 0u) << c.file;
        EXPECT_NE(log.find(c.file), std::string::npos) << log;
    }
}

TEST_F(Channels, FlacNeedsItsDecoderRoleAndUrlStreamsAreNotThereYet) {
    std::string flac = sine("a.flac", 1.0);
    pluginFreeAll();
    testing::internal::CaptureStdout();
    EXPECT_EQ(streamCreateFile(flac), 0u);
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(engineErrorCode(), EngineError::FileFormat);
    EXPECT_EQ(streamCreateUrl("http://127.0.0.1:9/stream"), 0u);
    EXPECT_EQ(engineErrorCode(), EngineError::NotAvailable);
    EXPECT_EQ(pluginLoad("bassnothing.dll"), 0u);
}

} // namespace
