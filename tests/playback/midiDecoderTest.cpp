#include "media/midiWriter.h"
#include "playback/engine/decoder.h"
#include "support/tempDir.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

const std::string timGm = "/usr/share/sounds/sf2/TimGM6mb.sf2";

// A seek lands on the frame asked for; the notes after it may come up to two of FluidSynth's
// 64-frame blocks away from where playing straight through puts them: its player starts notes
// only at the start of a block, on a clock of whole milliseconds, and half a tick early.
constexpr long seekToleranceFrames = 128;

std::vector<float> renderFrames(Decoder& decoder, std::size_t frames, std::size_t block = 1237) {
    std::vector<float> out(2 * frames);
    std::size_t done = 0;
    while (done < frames) {
        std::size_t got = decoder.render(out.data() + 2 * done, std::min(block, frames - done));
        if (got == 0)
            break;
        done += got;
    }
    out.resize(2 * done);
    return out;
}

std::vector<float> renderToEnd(Decoder& decoder) {
    return renderFrames(decoder, decoder.lengthFrames() + engineRate);
}

float peak(const std::vector<float>& samples) {
    float top = 0.0f;
    for (float s : samples)
        top = std::max(top, std::abs(s));
    return top;
}

// The first frame that is clearly not silence, or -1.
long onsetFrame(const std::vector<float>& samples) {
    auto it =
        std::find_if(samples.begin(), samples.end(), [](float s) { return std::abs(s) > 1e-3f; });
    return it == samples.end() ? -1 : long(it - samples.begin()) / 2;
}

std::unique_ptr<MidiDecoder> openOrFail(const std::string& path,
                                        const std::vector<SoundFontRef>& fonts) {
    EngineError error = EngineError::Unknown;
    std::unique_ptr<MidiDecoder> decoder = openMidiDecoder(path, fonts, error);
    EXPECT_TRUE(decoder) << path;
    EXPECT_EQ(error, EngineError::Ok);
    return decoder;
}

SoundFontRef loadOrFail(const std::string& path) {
    EngineError error = EngineError::Unknown;
    SoundFontRef font = loadSoundFont(path, error);
    EXPECT_TRUE(font) << path;
    return font;
}

struct LengthCase {
    const char* name;
    media::MidiSong song;
};

media::MidiSong coarseSong() {
    media::MidiSong song;
    song.division = 24;
    song.tempos = {{0.0, 50.0}, {1.3, 200.0}, {2.0, 61.0}};
    song.notes = {{0, 60, 100, 0.2, 0.4}, {9, 38, 100, 2.5, 0.2}};
    song.end = 3.7;
    return song;
}

media::MidiSong notesOutlastTheEnd() {
    media::MidiSong song = media::bandSong(2.0);
    song.notes.push_back({2, 72, 90, 1.5, 1.6}); // the file lasts until this note-off
    return song;
}

class MidiLength : public testing::TestWithParam<LengthCase> {};

TEST_P(MidiLength, IsTheFilesTrueLengthAndRendersExactlyThatManyFramesOfSilenceWithoutAFont) {
    TempDir dir;
    std::string path = dir.str() + "/song.mid";
    std::optional<double> seconds = media::writeMidi(path, GetParam().song);
    ASSERT_TRUE(seconds);
    std::unique_ptr<MidiDecoder> decoder = openOrFail(path, {});
    ASSERT_TRUE(decoder);
    EXPECT_NEAR(double(decoder->lengthFrames()) / engineRate, *seconds, 1.0 / engineRate);
    std::vector<float> all = renderToEnd(*decoder);
    EXPECT_EQ(all.size() / 2, decoder->lengthFrames());
    EXPECT_EQ(peak(all), 0.0f);
    float spare[2 * 16];
    EXPECT_EQ(decoder->render(spare, 16), 0u);
}

INSTANTIATE_TEST_SUITE_P(
    Songs, MidiLength,
    testing::Values(LengthCase{"TempoChangeMidSong", media::bandSong(4.0)},
                    LengthCase{"CoarseTicksAndThreeTempos", coarseSong()},
                    LengthCase{"NotesOutlastTheEnd", notesOutlastTheEnd()},
                    LengthCase{"DenseGeneralMidi", media::denseGeneralMidiSong(3.0)}),
    [](const testing::TestParamInfo<LengthCase>& info) { return std::string(info.param.name); });

TEST(MidiDecoder, WithAFontTheBandIsAudibleThroughout) {
    TempDir dir;
    std::string path = dir.str() + "/band.mid";
    ASSERT_TRUE(media::writeMidi(path, media::bandSong(3.0)));
    std::unique_ptr<MidiDecoder> decoder = openOrFail(path, {loadOrFail(timGm)});
    ASSERT_TRUE(decoder);
    for (int second = 0; second < 3; ++second)
        EXPECT_GT(peak(renderFrames(*decoder, engineRate)), 0.05f) << "second " << second;
    EXPECT_EQ(decoder->sourceRate(), engineRate);
    EXPECT_EQ(decoder->sourceChannels(), 2);
}

// One piano note after silence and a tempo change, both on whole ticks, so that the note's frame
// is known exactly.
constexpr double noteStart = 1.55;

media::MidiSong lateNoteSong(int division) {
    media::MidiSong song;
    song.division = division;
    song.tempos = {{0.0, 120.0}, {0.75, 75.0}}; // 1.55 s is one quarter note after the change
    song.programs = {{0, 0}};
    song.notes = {{0, 64, 110, noteStart, 0.5}};
    song.end = 2.5;
    return song;
}

// Ticks per quarter note, and where to seek in seconds before the note.
class MidiSeek : public testing::TestWithParam<std::tuple<int, double>> {};

TEST_P(MidiSeek, LandsOnTheFrameAndTheNoteAfterItComesOnTime) {
    auto [division, before] = GetParam();
    TempDir dir;
    std::string path = dir.str() + "/late.mid";
    ASSERT_TRUE(media::writeMidi(path, lateNoteSong(division)));
    SoundFontRef font = loadOrFail(timGm);
    std::unique_ptr<MidiDecoder> straight = openOrFail(path, {font});
    std::unique_ptr<MidiDecoder> seeking = openOrFail(path, {font});
    ASSERT_TRUE(straight && seeking);
    long onset = onsetFrame(renderToEnd(*straight));
    ASSERT_GT(onset, 0);

    renderToEnd(*seeking); // seeks from the end, as a loop does, and from mid-song below
    auto target = static_cast<std::uint64_t>(std::llround((noteStart - before) * engineRate));
    ASSERT_TRUE(seeking->seek(target));
    renderFrames(*seeking, 100);
    ASSERT_TRUE(seeking->seek(target));
    std::vector<float> after = renderToEnd(*seeking);
    EXPECT_EQ(after.size() / 2, seeking->lengthFrames() - target);
    long onsetAfter = onsetFrame(after);
    ASSERT_GE(onsetAfter, 0);
    EXPECT_NEAR(double(target) + onsetAfter, double(onset), seekToleranceFrames);
}

// From the start, before and after the tempo change, a frame before the note and on it; with
// ticks of 92 and of 37 frames.
INSTANTIATE_TEST_SUITE_P(Targets, MidiSeek,
                         testing::Combine(testing::Values(192, 480),
                                          testing::Values(1.55, 1.0, 0.3, 1.0 / engineRate, 0.0)));

TEST(MidiDecoder, ASeekBeyondTheEndFailsAndLeavesThePosition) {
    TempDir dir;
    std::string path = dir.str() + "/late.mid";
    ASSERT_TRUE(media::writeMidi(path, lateNoteSong(96)));
    std::unique_ptr<MidiDecoder> decoder = openOrFail(path, {});
    ASSERT_TRUE(decoder);
    renderFrames(*decoder, 1000);
    EXPECT_FALSE(decoder->seek(decoder->lengthFrames() + 1));
    EXPECT_EQ(renderToEnd(*decoder).size() / 2, decoder->lengthFrames() - 1000);
    EXPECT_TRUE(decoder->seek(decoder->lengthFrames()));
    float spare[2 * 16];
    EXPECT_EQ(decoder->render(spare, 16), 0u);
}

TEST(MidiFonts, SettingAFontMidStreamMakesTheNextNotesAudibleAndClearingItSilencesThem) {
    TempDir dir;
    std::string path = dir.str() + "/band.mid";
    ASSERT_TRUE(media::writeMidi(path, media::bandSong(4.0)));
    std::unique_ptr<MidiDecoder> decoder = openOrFail(path, {});
    ASSERT_TRUE(decoder);
    EXPECT_EQ(peak(renderFrames(*decoder, engineRate)), 0.0f);
    decoder->setFonts({loadOrFail(timGm)});
    EXPECT_GT(peak(renderFrames(*decoder, engineRate)), 0.05f);
    decoder->setFonts({});
    EXPECT_EQ(peak(renderFrames(*decoder, engineRate)), 0.0f);
}

TEST(MidiFonts, TwoStreamsShareAFontAndKeepPlayingWhenItsLastOtherHolderLetsGo) {
    TempDir dir;
    std::string path = dir.str() + "/band.mid";
    ASSERT_TRUE(media::writeMidi(path, media::bandSong(2.0)));
    SoundFontRef font = loadOrFail(timGm);
    std::unique_ptr<MidiDecoder> first = openOrFail(path, {font});
    std::unique_ptr<MidiDecoder> second = openOrFail(path, {font, loadOrFail(timGm)});
    ASSERT_TRUE(first && second);
    std::vector<float> head = renderFrames(*first, engineRate / 2);
    font.reset();
    std::vector<float> tail = renderToEnd(*first);
    head.insert(head.end(), tail.begin(), tail.end());
    EXPECT_GT(peak(tail), 0.05f);
    EXPECT_TRUE(head == renderToEnd(*second)); // the same font twice plays as the font once
}

struct FailureCase {
    const char* name;
    const char* file;
    std::string bytes; // the file is not made when empty
    EngineError expected;
    bool fluidSynthSpeaksToo = false; // it parsed the file before refusing it
};

std::string smpteMidi() {
    std::string header("MThd\0\0\0\6\0\1\0\1\xE7\x28", 14);
    return header + std::string("MTrk\0\0\0\4\0\xFF\x2F\0", 12);
}

class OpenFailure : public testing::TestWithParam<FailureCase> {};

TEST_P(OpenFailure, FailsWithItsErrorAndALastLogLineNamingThePath) {
    TempDir dir;
    const FailureCase& c = GetParam();
    std::string path = dir.str() + "/" + c.file;
    if (!c.bytes.empty())
        dir.write(c.file, c.bytes);
    EngineError error = EngineError::Ok;
    CaptureStdout();
    bool isFont = std::string(c.file).ends_with(".sf2");
    bool opened =
        isFont ? bool(loadSoundFont(path, error)) : bool(openMidiDecoder(path, {}, error));
    std::string log = GetCapturedStdout();
    EXPECT_FALSE(opened);
    EXPECT_EQ(error, c.expected);
    // FluidSynth's own lines about a font it cannot parse come first; ours ends the story.
    ASSERT_TRUE(log.ends_with("\n")) << log;
    std::string lastLine = log.substr(log.rfind('\n', log.size() - 2) + 1);
    EXPECT_NE(lastLine.find(path), std::string::npos) << log;
    EXPECT_TRUE(lastLine.starts_with(isFont ? "soundfont: " : "midi: ")) << log;
    if (!c.fluidSynthSpeaksToo) {
        EXPECT_EQ(lastLine, log);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Files, OpenFailure,
    testing::Values(
        FailureCase{"MissingMidi", "gone.mid", "", EngineError::FileOpen},
        FailureCase{"TextNamedMid", "notes.mid", "just some text\n", EngineError::FileFormat},
        FailureCase{"HeaderOnly", "short.mid", std::string("MThd\0\0\0\6\0\1", 10),
                    EngineError::FileFormat},
        FailureCase{"TrackLongerThanFile", "cut.mid",
                    std::string("MThd\0\0\0\6\0\1\0\1\1\xE0MTrk\0\0\1\0\0\x90\x40", 25),
                    EngineError::FileFormat},
        FailureCase{"SmpteTiming", "smpte.mid", smpteMidi(), EngineError::Codec},
        FailureCase{"MissingFont", "gone.sf2", "", EngineError::FileOpen},
        FailureCase{"GarbageFont", "noise.sf2", std::string(4096, '\x5A'), EngineError::FileFormat},
        FailureCase{"RiffHeaderThenGarbage", "broken.sf2",
                    std::string("RIFF\x10\0\0\0sfbkLIST", 16) + std::string(4096, '\x5A'),
                    EngineError::FileFormat, true}),
    [](const testing::TestParamInfo<FailureCase>& info) { return std::string(info.param.name); });

} // namespace
