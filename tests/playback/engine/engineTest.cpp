#include "playback/engine/engineFixture.h"

#include <atomic>
#include <cmath>
#include <filesystem>
#include <random>
#include <thread>

namespace {

using Channels = NullEngine;

TEST_F(Channels, ZeroStaleAndPreInitHandlesFailEveryCallAndNeverReachANewChannel) {
    std::string file = sine("a.flac", 1.0);
    ChannelHandle song = streamCreateFile(file);
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
    ChannelHandle again = streamCreateFile(file);
    EXPECT_NE(again, song);
    EXPECT_FALSE(channelPlay(song));
    EXPECT_TRUE(channelPlay(again));

    // After a free every call fails until the next init, and the old handles stay stale.
    ASSERT_TRUE(engineFree());
    EXPECT_EQ(streamCreateFile(file), 0u);
    EXPECT_EQ(engineErrorCode(), EngineError::Init);
    EXPECT_EQ(midiFontInit(timidityFont), 0u);
    ASSERT_TRUE(engineInit(AudioOutput::Null));
    ChannelHandle after = streamCreateFile(file);
    EXPECT_NE(after, 0u);
    EXPECT_NE(after, again);
    EXPECT_EQ(channelGetLength(again), noPosition);
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
        fresh.push_back(streamCreateFile(file));
        channelSetVolume(fresh.back(), 0.75f);
    }
    done = true;
    worker.join();
    for (ChannelHandle h : fresh)
        EXPECT_EQ(volumeOf(h), 0.75f);
}

TEST_F(Channels, AFileStreamLoopsWhenItsEndIsHeardAndAModuleStopsThere) {
    ChannelHandle song = streamCreateFile(sine("a.flac", 1.0));
    ASSERT_TRUE(channelPlay(song));
    nullOutputPull(44100 + 22050);
    EXPECT_EQ(channelGetPosition(song), frameBytes(0.5));
    EXPECT_EQ(channelIsActive(song), ChannelState::Playing);
    ASSERT_TRUE(streamFree(song));

    ChannelHandle tracker = musicLoad(module("a.mod"));
    ASSERT_TRUE(channelPlay(tracker));
    nullOutputPull(static_cast<std::size_t>((moduleSeconds + 1.0) * 44100));
    EXPECT_EQ(channelIsActive(tracker), ChannelState::Stopped);
    EXPECT_EQ(channelGetPosition(tracker), channelGetLength(tracker));
    EXPECT_EQ(peak(nullOutputPull(4410)), 0.0f);
}

// A looping file that the user cuts short while it plays ends as a failed channel does, at its
// length, so that the radio moves on instead of waiting on silence or on a half that loops.
TEST_F(Channels, AFileCutShortWhileItPlaysEndsItsChannelAtItsLength) {
    for (const char* name : {"cut.mp3", "cut.mid"}) {
        for (double kept : {0.0, 0.5}) {
            SCOPED_TRACE(testing::Message() << name << " cut to " << kept);
            std::string file =
                std::string(name).ends_with(".mid") ? midi(name, 2.0) : sine(name, 2.0);
            ChannelHandle song = streamCreateFile(file);
            ASSERT_TRUE(channelPlay(song));
            nullOutputPull(4410);
            auto size = std::filesystem::file_size(file);
            std::string log = logOf([&] {
                std::filesystem::resize_file(file, static_cast<std::uintmax_t>(size * kept));
                // Bounded: the song's length, the decoder's lead and a pass round the loop.
                for (int i = 0; i < 100 && channelIsActive(song) == ChannelState::Playing; ++i)
                    nullOutputPull(4410);
            });
            EXPECT_EQ(channelIsActive(song), ChannelState::Stopped);
            EXPECT_EQ(channelGetPosition(song), channelGetLength(song));
            EXPECT_NE(log.find(file), std::string::npos) << log;
            ASSERT_TRUE(streamFree(song));
        }
    }
}

// A create returns before the decoder exists: a seek and fonts given at once still apply, and
// the mix from there is the decoder's own audio from that frame (a seek to the wrong place puts
// the sine out of phase; a missing font leaves the MIDI silent).
TEST_F(Channels, ASeekAndFontsGivenRightAfterCreateAreHeardOnceTheDecoderIsThere) {
    EngineError error = EngineError::Unknown;
    SoundFontRef reference = loadSoundFont(timidityFont, error);
    FontHandle font = midiFontInit(timidityFont);
    const std::string files[] = {sine("a.mp3", 3.0), sine("a.flac", 3.0), sine("a.m4a", 3.0),
                                 midi("a.mid", 3.0), module("a.mod")};
    const std::uint64_t frame = 44123; // not on a period of the sine, nor on a codec frame
    for (const std::string& file : files) {
        SCOPED_TRACE(file);
        bool isMidi = file.ends_with(".mid"), isModule = file.ends_with(".mod");
        ChannelHandle song = isModule ? musicLoad(file) : streamCreateFile(file);
        MidiFontRecord record{font, -1, 0};
        if (isMidi) {
            ASSERT_TRUE(midiStreamSetFonts(song, &record, 1));
        }
        ASSERT_TRUE(channelSetPosition(song, frame * 4)); // 44100 Hz stereo, every one
        ASSERT_TRUE(channelPlay(song));
        std::vector<float> heard = nullOutputPull(8192);
        EXPECT_EQ(channelGetPosition(song), (frame + 8192) * 4);

        std::unique_ptr<Decoder> straight = isMidi     ? openMidiDecoder(file, {reference}, error)
                                            : isModule ? openModuleDecoder(file, error)
                                                       : openFfmpegDecoder(file, error);
        ASSERT_TRUE(straight && straight->seek(frame));
        std::vector<float> expected = renderFrames(*straight, 8192, 1024);
        EXPECT_GT(peak(expected), 0.01f);
        // Whether the decode thread rendered before it took the seek changes a little what a seek
        // gives (a module's ramps start afresh, FluidSynth's effects keep a trace, AAC's noise
        // draws on): the distance from the straight run is a small part of the audio, where the
        // wrong place or no font would make it as large as the audio itself.
        EXPECT_LT(relativeDistance(heard, expected, 2 * 441), 0.2);
        ASSERT_TRUE(streamFree(song));
    }
}

// A file whose probe passes but whose decoder finds nothing to play ends on the decode thread as
// a failed channel, even with a seek waiting for that decoder.
TEST_F(Channels, AFileFoundUndecodableAfterCreateEndsItsChannelAtItsLength) {
    std::string whole = TempDir::read(sine("whole.flac", 1.0));
    std::size_t at = 4; // "fLaC", then metadata blocks up to the one flagged last
    for (bool last = false; !last && at + 4 <= whole.size();) {
        auto byte = [&](std::size_t i) { return static_cast<unsigned char>(whole[at + i]); };
        last = byte(0) & 0x80;
        at += 4 + (std::size_t{byte(1)} << 16 | std::size_t{byte(2)} << 8 | byte(3));
    }
    std::string file = dir.write("noFrames.flac", whole.substr(0, at));
    for (bool seekFirst : {false, true}) {
        SCOPED_TRACE(seekFirst ? "with a seek" : "without a seek");
        ChannelHandle song = 0;
        std::string log = logOf([&] {
            song = streamCreateFile(file);
            ASSERT_NE(song, 0u);
            if (seekFirst) {
                ASSERT_TRUE(channelSetPosition(song, channelGetLength(song) / 8 * 4));
            }
            ASSERT_TRUE(channelPlay(song));
            nullOutputPull(1024);
        });
        EXPECT_EQ(channelIsActive(song), ChannelState::Stopped);
        EXPECT_EQ(channelGetPosition(song), channelGetLength(song));
        EXPECT_NE(log.find("no audio decoded"), std::string::npos) << log;
        EXPECT_NE(log.find(file), std::string::npos) << log;
    }
}

TEST_F(Channels, PauseHoldsThePositionAndASeekIsHeardAtOnceUnlessItIsOutside) {
    ChannelHandle song = streamCreateFile(sine("a.flac", 5.0));
    ASSERT_TRUE(channelPlay(song));
    nullOutputPull(44100);
    ASSERT_TRUE(channelPause(song));
    EXPECT_EQ(channelIsActive(song), ChannelState::Paused);
    EXPECT_EQ(peak(nullOutputPull(44100)), 0.0f);
    EXPECT_EQ(channelGetPosition(song), frameBytes(1.0));
    ASSERT_TRUE(channelPlay(song)); // resumes without rewinding
    nullOutputPull(4410);
    EXPECT_EQ(channelGetPosition(song), frameBytes(1.1));

    ASSERT_TRUE(channelSetPosition(song, frameBytes(3.0)));
    EXPECT_EQ(channelGetPosition(song), frameBytes(3.0));
    nullOutputPull(4410);
    EXPECT_EQ(channelGetPosition(song), frameBytes(3.1));
    EXPECT_FALSE(channelSetPosition(song, channelGetLength(song) + 4));
    EXPECT_EQ(engineErrorCode(), EngineError::Position);
    EXPECT_EQ(channelGetPosition(song), frameBytes(3.1));
    EXPECT_EQ(channelSecondsToBytes(song, 2.0), frameBytes(2.0));
}

TEST_F(Channels, SlidesMoveSampleBySampleTwoAtOnceAndASetVolumeEndsOne) {
    ChannelHandle song = streamCreateFile(sine("a.flac", 2.0));
    ASSERT_TRUE(channelSetVolume(song, 0.0f));
    ASSERT_TRUE(channelSlideVolume(song, 1.0f, 100)); // 4410 frames, set before play
    ASSERT_TRUE(channelPlay(song));
    std::vector<float> first = nullOutputPull(2205);
    EXPECT_FLOAT_EQ(volumeOf(song), 0.5f);
    // Each sample carries the sine at the volume of its own frame.
    for (std::size_t i : {441u, 1000u, 2000u}) {
        double sine = 0.5 * std::sin(2 * M_PI * 441.0 * static_cast<double>(i) / 44100);
        EXPECT_NEAR(first[2 * i], sine * static_cast<double>(i) / 4410, 2e-3) << "frame " << i;
    }
    nullOutputPull(2205);
    EXPECT_EQ(volumeOf(song), 1.0f);
    EXPECT_NEAR(peak(nullOutputPull(441)), 0.5f, 2e-3);

    ChannelHandle up = streamCreateFile(sine("up.flac", 2.0));
    channelSetVolume(up, 0.0f);
    channelSlideVolume(up, 1.0f, 200);
    channelSlideVolume(song, 0.0f, 200);
    channelPlay(up);
    nullOutputPull(4410);
    EXPECT_FLOAT_EQ(volumeOf(up), 0.5f);
    EXPECT_FLOAT_EQ(volumeOf(song), 0.5f);
    channelSetVolume(song, 0.25f);
    nullOutputPull(4410);
    EXPECT_EQ(volumeOf(song), 0.25f);
    EXPECT_EQ(volumeOf(up), 1.0f);
}

// One NaN or infinity in a volume or gain would reach the shared output and silence every channel.
TEST_F(Channels, ANaNOrInfiniteVolumeIsRefusedAndTheSongPlaysOnAtItsLevel) {
    ChannelHandle song = streamCreateFile(sine("a.flac", 2.0));
    ASSERT_TRUE(channelSetVolume(song, 0.5f));
    ASSERT_TRUE(channelPlay(song));
    for (int how : {0, 1, 2}) {
        // 800 dB is finite, but its factor is not.
        for (float bad : {NAN, INFINITY, -INFINITY, 800.0f}) {
            SCOPED_TRACE(testing::Message() << "setter " << how << ": " << bad);
            if (how < 2 && std::isfinite(bad))
                continue;
            EXPECT_FALSE(how == 0   ? channelSetVolume(song, bad)
                         : how == 1 ? channelSlideVolume(song, bad, 100)
                                    : channelSetGain(song, bad, 0));
            EXPECT_EQ(engineErrorCode(), EngineError::IllegalParam);
            EXPECT_EQ(volumeOf(song), 0.5f);
            EXPECT_NEAR(peak(nullOutputPull(4410)), 0.25f, 2e-3);
        }
    }
}

TEST_F(Channels, AMidiStreamIsSilentWithoutAFontAndNewOnesTakeTheDefaultFont) {
    ChannelHandle bare = streamCreateFile(midi("a.mid", 3.0));
    ASSERT_NE(bare, 0u);
    EXPECT_EQ(midiStreamGetFonts(bare, nullptr, 0), 0);
    channelPlay(bare);
    EXPECT_EQ(peak(nullOutputPull(44100)), 0.0f);
    ASSERT_TRUE(streamFree(bare));

    FontHandle font = setDefaultFont();
    ChannelHandle song = streamCreateFile(path("a.mid"));
    MidiFontRecord got[2];
    ASSERT_EQ(midiStreamGetFonts(song, got, 2), 1);
    EXPECT_EQ(got[0].font, font);
    channelPlay(song);
    EXPECT_GT(peak(nullOutputPull(44100)), 0.01f);
    // Freed while the stream plays: the stream keeps what it renders from, and the default list
    // keeps it for the streams to come.
    EXPECT_TRUE(midiFontFree(font));
    EXPECT_GT(peak(nullOutputPull(44100)), 0.01f);
    ASSERT_TRUE(streamFree(song));
    song = streamCreateFile(path("a.mid"));
    channelPlay(song);
    EXPECT_EQ(midiStreamGetFonts(song, nullptr, 0), 1);
    EXPECT_GT(peak(nullOutputPull(44100)), 0.01f);
    MidiFontRecord record{font, -1, 0};
    EXPECT_FALSE(midiStreamSetFonts(streamCreateFile(sine("a.flac", 1.0)), &record, 1));
}

// A second open of a file shares the parse of the first, which outlives its last handle until four
// fonts were opened since (the file holds no font any more, so only a parse kept can open it).
TEST_F(Channels, ASecondOpenOfAFontSharesTheFirstAndTheLastFourOpenedStayParsed) {
    std::string copy = path("copy.sf2");
    std::filesystem::copy_file(timidityFont, copy);
    FontHandle first = midiFontInit(copy);
    dir.write("copy.sf2", "no font");
    FontHandle second = midiFontInit(copy);
    EXPECT_TRUE(first != 0 && second != 0 && second != first);
    EXPECT_TRUE(midiFontFree(first) && midiFontFree(second));
    FontHandle again = midiFontInit(copy);
    EXPECT_NE(again, 0u);
    midiFontFree(again);
    for (int i = 0; i < 4; ++i) {
        std::string other = path("other" + std::to_string(i) + ".sf2");
        std::filesystem::copy_file(timidityFont, other);
        midiFontFree(midiFontInit(other));
    }
    logOf([&] { EXPECT_EQ(midiFontInit(copy), 0u); });
}

// Every decoder's refusals, through the calls the player makes: the zero handle, the decoder's
// error, and one line that names the file, after FluidSynth's own lines about a broken font.
TEST_F(Channels, WhatCannotLoadGivesTheZeroHandleItsErrorAndOneLineNamingIt) {
    std::mt19937 rng(7);
    std::string noise(64 * 1024, '\0');
    for (char& c : noise)
        c = static_cast<char>(rng());
    const std::string mod = TempDir::read(module("whole.mod")); // 1084 bytes of header first
    const std::string text = "These are not the songs you are looking for.\n";
    const std::string badModule = "is not a module libopenmpt can load";
    enum Call { Stream, Music, Font };
    struct Case {
        std::string file;
        Call call;
        EngineError error;
        std::string says = ""; // besides the decoder's prefix and the path
        bool fluidSynthSpeaksToo = false;
    };
    const Case cases[] = {
        {path("absent.mp3"), Stream, EngineError::FileOpen},
        {dir.mkdir("folder.mp3"), Stream, EngineError::FileOpen},
        {dir.write("notes.mp3", text), Stream, EngineError::FileFormat},
        {dir.write("noise.flac", noise), Stream, EngineError::FileFormat},
        {media::writeVideoOnly(path("video.mkv")), Stream, EngineError::FileFormat},
        {media::writeSineWav(path("rate800kHz.wav"), {440.0, 0.01, 800000, 1, 0.5}), Stream,
         EngineError::FileFormat, "its rate is past 768 kHz"},
        {dir.write("noise.xm", noise.substr(0, 4096)), Music, EngineError::FileFormat, badModule},
        {dir.write("text.mod", text), Music, EngineError::FileFormat, badModule},
        {dir.write("empty.it", ""), Music, EngineError::FileFormat, badModule},
        {dir.write("cutBeforeItsTag.mod", mod.substr(0, 1000)), Music, EngineError::FileFormat,
         badModule},
        {path("missing.s3m"), Music, EngineError::FileOpen, "cannot open"},
        {dir.mkdir("folder.mtm"), Music, EngineError::FileOpen, "cannot read"},
        {path("gone.mid"), Stream, EngineError::FileOpen},
        {dir.write("notes.mid", text), Stream, EngineError::FileFormat},
        {dir.write("headerOnly.mid", std::string("MThd\0\0\0\6\0\1", 10)), Stream,
         EngineError::FileFormat},
        {dir.write("trackLongerThanFile.mid",
                   std::string("MThd\0\0\0\6\0\1\0\1\1\xE0MTrk\0\0\1\0\0\x90\x40", 25)),
         Stream, EngineError::FileFormat},
        {dir.write("smpte.mid", std::string("MThd\0\0\0\6\0\1\0\1\xE7\x28"
                                            "MTrk\0\0\0\4\0\xFF\x2F\0",
                                            26)),
         Stream, EngineError::Codec},
        {path("gone.sf2"), Font, EngineError::FileOpen},
        {dir.write("noise.sf2", std::string(4096, '\x5A')), Font, EngineError::FileFormat},
        {dir.write("riffThenGarbage.sf2",
                   std::string("RIFF\x10\0\0\0sfbkLIST", 16) + std::string(4096, '\x5A')),
         Font, EngineError::FileFormat, "", true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        std::uint32_t got = 1;
        std::string log = logOf([&] {
            got = c.call == Font    ? midiFontInit(c.file)
                  : c.call == Music ? musicLoad(c.file)
                                    : streamCreateFile(c.file);
        });
        EXPECT_EQ(got, 0u);
        EXPECT_EQ(engineErrorCode(), c.error);
        ASSERT_TRUE(log.ends_with("\n")) << log;
        std::string lastLine = log.substr(log.rfind('\n', log.size() - 2) + 1);
        const char* prefix = c.call == Font             ? "soundfont: "
                             : c.call == Music          ? "module: "
                             : c.file.ends_with(".mid") ? "midi: "
                                                        : "FFmpeg decoder: cannot play ";
        EXPECT_TRUE(lastLine.starts_with(prefix)) << log;
        EXPECT_NE(lastLine.find(c.file), std::string::npos) << log;
        EXPECT_NE(lastLine.find(c.says), std::string::npos) << log;
        EXPECT_TRUE(c.fluidSynthSpeaksToo || lastLine == log) << log;
    }
    // A FLAC file without its decoder role.
    std::string flac = sine("a.flac", 1.0);
    pluginFreeAll();
    logOf([&] { EXPECT_EQ(streamCreateFile(flac), 0u); });
    EXPECT_EQ(engineErrorCode(), EngineError::FileFormat);
    EXPECT_EQ(pluginLoad("bassnothing.dll"), 0u);
}

} // namespace
