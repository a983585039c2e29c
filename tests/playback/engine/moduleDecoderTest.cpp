#include "playback/engine/engineFixture.h"

#include <optional>

namespace {

using Writer = std::optional<double> (*)(const std::string&, const media::TrackerSong&);

struct Format {
    const char* name;
    const char* extension;
    Writer write;
    media::TrackerSong song;
};

// The .xm runs at a tempo whose ticks are no whole number of frames, and with short patterns.
const Format formats[] = {
    {"mod", ".mod", media::writeMod, {.patterns = 2}},
    {"xm",
     ".xm",
     media::writeXm,
     {.patterns = 3, .channels = 6, .rowsPerPattern = 48, .speed = 5, .bpm = 140}},
    {"s3m", ".s3m", media::writeS3m, {.patterns = 2, .channels = 5}},
    {"it", ".it", media::writeIt, {.patterns = 2, .channels = 7, .rowsPerPattern = 40}},
};

constexpr std::size_t chunkFrames = 1000;

// Every frame up to the end, in the chunks a decode thread would ask for; the chunks before the
// last must come back full.
std::vector<float> renderToEnd(Decoder& decoder, bool& onlyLastShort) {
    std::vector<float> all;
    std::vector<float> chunk(2 * chunkFrames);
    onlyLastShort = true;
    bool hadShort = false;
    while (std::size_t got = decoder.render(chunk.data(), chunkFrames)) {
        onlyLastShort = onlyLastShort && !hadShort;
        hadShort = got < chunkFrames;
        all.insert(all.end(), chunk.begin(), chunk.begin() + 2 * got);
    }
    return all;
}

// The largest difference between rendered audio and the straight render from a frame on.
float largestDifference(const std::vector<float>& got, const std::vector<float>& all,
                        std::size_t fromFrame, std::size_t skipFrames) {
    float largest = 0.0f;
    for (std::size_t i = 2 * skipFrames; i < got.size(); ++i)
        largest = std::max(largest, std::fabs(got[i] - all[2 * fromFrame + i]));
    return largest;
}

// Opens a module that must load, without a word in the log.
std::unique_ptr<Decoder> open(const std::string& path) {
    EngineError error = EngineError::Ok;
    std::unique_ptr<Decoder> decoder;
    EXPECT_EQ(logOf([&] { decoder = openModuleDecoder(path, error); }), "");
    EXPECT_EQ(error, EngineError::Ok);
    return decoder;
}

class ModuleFormat : public testing::TestWithParam<Format> {};

// No loop and no fade-out tail: the frames played are the length reported, to 1 ms or 0.1%
// (libopenmpt's prescan counts a tick at 140 BPM as 787.4 frames where its mixer plays 787). A
// seek lands on the very frame asked for: after the first 10 ms, in which the resampler and the
// volume ramps start afresh, every sample is the straight render's to 1e-4. The audio one frame
// later differs by far more, so a seek that is off by a single frame fails.
TEST_P(ModuleFormat, PlaysItsTrueLengthOnceAndSeeksOntoTheAudioOfAStraightRun) {
    TempDir dir;
    std::string path = dir.str() + "/song" + GetParam().extension;
    std::optional<double> seconds = GetParam().write(path, GetParam().song);
    ASSERT_TRUE(seconds);
    std::unique_ptr<Decoder> decoder = open(path);
    ASSERT_TRUE(decoder);
    EXPECT_NEAR(decoder->lengthFrames() / 44100.0, *seconds, 0.050);

    bool onlyLastShort = false;
    std::vector<float> all = renderToEnd(*decoder, onlyLastShort);
    EXPECT_TRUE(onlyLastShort);
    double lengthFrames = static_cast<double>(decoder->lengthFrames());
    EXPECT_NEAR(static_cast<double>(all.size() / 2), lengthFrames,
                std::max(44.0, lengthFrames / 1000));
    EXPECT_GT(*std::max_element(all.begin(), all.end()), 0.05f);
    EXPECT_TRUE(renderFrames(*decoder, chunkFrames).empty());
    EXPECT_TRUE(renderFrames(*decoder, chunkFrames).empty());

    std::size_t length = all.size() / 2;
    constexpr std::size_t settle = 441, compared = 4410;
    // The start, inside a row, on a row's first and last frames, mid-song, close to the end.
    const std::size_t rowFrames = 44100 * GetParam().song.speed * 5 / (2 * GetParam().song.bpm);
    for (std::size_t target : {std::size_t{0}, std::size_t{44117}, 8 * rowFrames, 3 * rowFrames - 1,
                               length / 2 + 5, length - compared}) {
        SCOPED_TRACE(target);
        ASSERT_TRUE(decoder->seek(target));
        std::vector<float> got = renderFrames(*decoder, compared);
        ASSERT_EQ(got.size(), 2 * compared);
        EXPECT_LT(largestDifference(got, all, target, settle), 1e-4f);
        EXPECT_GT(largestDifference(got, all, target + 1, settle), 1e-2f);
    }
    // The end itself is a place to seek to, with nothing after it; and the song plays again
    // from its start once it had stopped.
    ASSERT_TRUE(decoder->seek(decoder->lengthFrames()));
    EXPECT_TRUE(renderFrames(*decoder, chunkFrames).empty());
    ASSERT_TRUE(decoder->seek(0));
    std::vector<float> straight = renderFrames(*decoder, 20000);
    EXPECT_LT(largestDifference(straight, all, 0, settle), 1e-4f);

    // A seek beyond the end is refused and play goes on where it was.
    ASSERT_TRUE(decoder->seek(0));
    renderFrames(*decoder, 10000);
    EXPECT_FALSE(decoder->seek(decoder->lengthFrames() + 1));
    EXPECT_FALSE(decoder->seek(UINT64_MAX));
    std::vector<float> next = renderFrames(*decoder, 10000);
    EXPECT_EQ(next, std::vector<float>(straight.begin() + 20000, straight.end()));
}

INSTANTIATE_TEST_SUITE_P(Formats, ModuleFormat, testing::ValuesIn(formats),
                         [](const auto& info) { return std::string(info.param.name); });

// libopenmpt plays what a cut module still holds, as trackers do: old modules often lack the end
// of their last sample. Its order list and patterns give the length, so that stays whole; what
// is missing is silent, and the song still plays to its end and stops.
TEST(ModuleDecoder, ModuleCutAfterItsHeaderPlaysToItsFullLengthWithoutComplaint) {
    TempDir dir; // a four-channel .mod of one pattern: 1084 bytes of header, 1024 of pattern
    ASSERT_TRUE(media::writeMod(dir.str() + "/whole.mod"));
    std::string whole = TempDir::read(dir.path() / "whole.mod");
    for (std::size_t keep : {std::size_t{1084 + 1024 + 300}, std::size_t{1084 + 512}}) {
        SCOPED_TRACE(keep);
        std::unique_ptr<Decoder> decoder = open(dir.write("cut.mod", whole.substr(0, keep)));
        ASSERT_TRUE(decoder);
        EXPECT_NEAR(decoder->lengthFrames() / 44100.0, 7.68, 0.050);
        bool onlyLastShort = false;
        std::vector<float> all = renderToEnd(*decoder, onlyLastShort);
        EXPECT_NEAR(static_cast<double>(all.size() / 2),
                    static_cast<double>(decoder->lengthFrames()), 44.0);
        EXPECT_TRUE(renderFrames(*decoder, chunkFrames).empty());
    }
}

} // namespace
