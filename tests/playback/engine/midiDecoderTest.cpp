#include "playback/engine/engineFixture.h"

#include <filesystem>

namespace {

// A seek lands on the frame asked for; the notes after it may come up to two of FluidSynth's
// 64-frame blocks away from where playing straight through puts them: its player starts notes
// only at the start of a block, on a clock of whole milliseconds, and half a tick early.
constexpr long seekToleranceFrames = 128;

// In blocks that are no multiple of FluidSynth's.
std::vector<float> render(Decoder& decoder, std::size_t frames) {
    return renderFrames(decoder, frames, 1237);
}
std::vector<float> renderToEnd(Decoder& decoder) {
    return renderAll(decoder, 1237);
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

// The song written as dir/name, or an empty path.
std::string written(const TempDir& dir, const std::string& name, const media::MidiSong& song) {
    std::string path = dir.str() + "/" + name;
    return media::writeMidi(path, song) ? path : "";
}

// Without a font, silence; a seek past the end is refused and leaves the position.
TEST(MidiLength, IsTheFilesTrueLengthAndRendersExactlyThatManyFramesWithoutAFont) {
    media::MidiSong notesOutlastTheEnd = media::bandSong(2.0);
    notesOutlastTheEnd.notes.push_back({2, 72, 90, 1.5, 1.6}); // the file lasts until its note-off
    const std::pair<const char*, media::MidiSong> songs[] = {
        {"a tempo change mid-song", media::bandSong(4.0)},
        {"coarse ticks and three tempos",
         {.division = 24,
          .tempos = {{0.0, 50.0}, {1.3, 200.0}, {2.0, 61.0}},
          .programs = {},
          .notes = {{0, 60, 100, 0.2, 0.4}, {9, 38, 100, 2.5, 0.2}},
          .end = 3.7}},
        {"notes that outlast the end", notesOutlastTheEnd},
        {"dense General MIDI", media::denseGeneralMidiSong(3.0)},
    };
    for (const auto& [why, song] : songs) {
        SCOPED_TRACE(why);
        TempDir dir;
        std::string path = dir.str() + "/song.mid";
        std::optional<double> seconds = media::writeMidi(path, song);
        ASSERT_TRUE(seconds);
        std::unique_ptr<MidiDecoder> decoder = openOrFail(path, {});
        ASSERT_TRUE(decoder);
        const std::uint64_t length = decoder->lengthFrames();
        EXPECT_NEAR(double(length) / engineRate, *seconds, 1.0 / engineRate);
        std::vector<float> head = render(*decoder, 1000);
        EXPECT_FALSE(decoder->seek(length + 1));
        std::vector<float> rest = renderToEnd(*decoder);
        EXPECT_EQ(rest.size() / 2, length - 1000);
        EXPECT_EQ(std::max(peak(head), peak(rest)), 0.0f);
        float spare[2 * 16];
        EXPECT_EQ(decoder->render(spare, 16), 0u);
        EXPECT_TRUE(decoder->seek(length));
        EXPECT_EQ(decoder->render(spare, 16), 0u);
    }
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
    std::string path = written(dir, "late.mid", lateNoteSong(division));
    SoundFontRef font = loadOrFail(timidityFont);
    std::unique_ptr<MidiDecoder> straight = openOrFail(path, {font});
    std::unique_ptr<MidiDecoder> seeking = openOrFail(path, {font});
    ASSERT_TRUE(straight && seeking);
    long onset = onsetFrame(renderToEnd(*straight));
    ASSERT_GT(onset, 0);

    renderToEnd(*seeking); // seeks from the end, as a loop does, and from mid-song below
    auto target = static_cast<std::uint64_t>(std::llround((noteStart - before) * engineRate));
    ASSERT_TRUE(seeking->seek(target));
    // Into the note: its release must not come through the seek, as a sound before the onset.
    render(*seeking, std::size_t(before * engineRate) + engineRate / 5);
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

TEST(MidiFonts, AFontSetMidStreamIsHeardFromTheNextNotesOnAndClearingItSilencesThem) {
    TempDir dir;
    std::unique_ptr<MidiDecoder> decoder =
        openOrFail(written(dir, "band.mid", media::bandSong(5.0)), {});
    ASSERT_TRUE(decoder);
    EXPECT_EQ(peak(render(*decoder, engineRate)), 0.0f);
    decoder->setFonts({loadOrFail(timidityFont)});
    for (int second = 1; second < 4; ++second)
        EXPECT_GT(peak(render(*decoder, engineRate)), 0.05f) << "second " << second;
    decoder->setFonts({});
    EXPECT_EQ(peak(render(*decoder, engineRate)), 0.0f);
}

// A change to the same font from another file: a note held across it rings on without a gap, and
// the notes after it keep their channel's program and drum set, so nothing audible changes.
TEST(MidiFonts, AFontChangeWhileANoteIsHeldKeepsItSoundingAndKeepsEveryProgram) {
    TempDir dir;
    std::string copy = dir.str() + "/copy.sf2";
    std::filesystem::copy_file(timidityFont, copy);
    media::MidiSong song;
    song.programs = {{0, 48}, {1, 33}};
    song.notes = {{0, 60, 100, 0.0, 3.0},
                  {0, 67, 100, 1.5, 1.0},
                  {1, 40, 100, 1.5, 1.0},
                  {9, 36, 100, 1.5, 0.2}};
    std::string path = written(dir, "held.mid", song);
    SoundFontRef font = loadOrFail(timidityFont);
    std::unique_ptr<MidiDecoder> steady = openOrFail(path, {font});
    std::unique_ptr<MidiDecoder> changed = openOrFail(path, {font});
    ASSERT_TRUE(steady && changed);
    std::vector<float> heard = render(*changed, engineRate);
    changed->setFonts({loadOrFail(copy)});
    std::vector<float> after = render(*changed, 2 * engineRate);
    heard.insert(heard.end(), after.begin(), after.end());
    std::vector<float> expected = render(*steady, 3 * engineRate);
    // The same audio as without the change: no gap, no program lost.
    float worst = 0.0f;
    for (std::size_t i = 0; i < expected.size(); ++i)
        worst = std::max(worst, std::abs(heard[i] - expected[i]));
    EXPECT_LT(worst, 1e-4f);
}

TEST(MidiFonts, TwoStreamsShareAFontAndKeepPlayingWhenItsLastOtherHolderLetsGo) {
    TempDir dir;
    std::string path = written(dir, "band.mid", media::bandSong(2.0));
    SoundFontRef font = loadOrFail(timidityFont);
    std::unique_ptr<MidiDecoder> first = openOrFail(path, {font});
    std::unique_ptr<MidiDecoder> second = openOrFail(path, {font, loadOrFail(timidityFont)});
    ASSERT_TRUE(first && second);
    std::vector<float> head = render(*first, engineRate / 2);
    font.reset();
    std::vector<float> tail = renderToEnd(*first);
    head.insert(head.end(), tail.begin(), tail.end());
    EXPECT_GT(peak(tail), 0.05f);
    EXPECT_TRUE(head == renderToEnd(*second)); // the same font twice plays as the font once
}

} // namespace
