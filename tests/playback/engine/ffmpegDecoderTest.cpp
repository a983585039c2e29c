#include "playback/engine/engineFixture.h"

#include <numbers>

namespace {

constexpr double frequency = 440.0;
constexpr double amplitude = 0.5;
constexpr double seconds = 3.3; // not a whole number of any codec's frames

struct Source {
    const char* name;
    const char* extension;
    int rate;
    int channels;
    std::vector<std::string> extraArgs;
    // How far the length may be from the frames encoded.
    double lengthToleranceMs;
    // Without LAME's tag nobody knows the encoder's delay: the sine arrives late and the phase
    // of the output cannot be checked.
    bool knowsEncoderDelay;
    // Largest difference between a seek's output and a straight run's at the same frame (a
    // resampler restarted on the same grid differs from one that ran through in rounding only).
    float seekTolerance;
    // Root mean square distance of the output from the sine that was encoded.
    double waveTolerance;
};

void PrintTo(const Source& source, std::ostream* os) {
    *os << source.name;
}

// LAME plays a pure tone about 3% quieter, hence the lossy formats' distance from the sine. AAC's
// noise substitution draws from a generator that a seek does not rewind, so its output after a
// seek differs from a straight run's by a little noise (without it, -aac_pns 0, it is exact).
const Source sources[] = {
    {"flac", ".flac", 44100, 2, {}, 0.0, true, 0.0f, 1e-4},
    {"mp3", ".mp3", 44100, 2, {}, 0.0, true, 0.0f, 0.015},
    {"m4a", ".m4a", 44100, 2, {}, 0.0, true, 3e-3f, 0.015},
    {"mp3Vbr", ".mp3", 44100, 2, {"-q:a", "4"}, 0.0, true, 0.0f, 0.015},
    // Two frames of delay and padding, 52 ms, that the file does not tell apart from music.
    {"mp3NoXing", ".mp3", 44100, 2, {"-write_xing", "0"}, 53.0, false, 0.0f, 0.0},
    {"flacMono48k", ".flac", 48000, 1, {}, 0.0, true, 1e-6f, 1e-4},
    {"mp3Mono48k", ".mp3", 48000, 1, {}, 0.0, true, 1e-6f, 0.015},
    {"m4a48k", ".m4a", 48000, 2, {}, 0.0, true, 3e-3f, 0.015},
};

struct Encoded {
    std::string path;
    std::uint64_t frames = 0; // the encoded sine's length at 44100 Hz
};

// Encodes the sine into `folder` as sine<extension>, beside the sine.wav it came from.
Encoded encodeSine(const std::filesystem::path& folder, const Source& source) {
    media::SineSpec spec{frequency, seconds, source.rate, source.channels, amplitude};
    std::string path = (folder / (std::string("sine") + source.extension)).string();
    if (media::writeEncodedSine(path, spec, source.extraArgs).empty())
        return {};
    std::uint64_t sourceFrames = media::wavFrames((folder / "sine.wav").string());
    return {path, sourceFrames * engineRate / static_cast<std::uint64_t>(source.rate)};
}

std::unique_ptr<Decoder> open(const std::string& path) {
    EngineError error = EngineError::Unknown;
    std::unique_ptr<Decoder> decoder = openFfmpegDecoder(path, error);
    EXPECT_EQ(error, EngineError::Ok) << path;
    return decoder;
}

float maxDifference(const float* a, const float* b, std::size_t samples) {
    float worst = 0.0f;
    for (std::size_t i = 0; i < samples; ++i)
        worst = std::max(worst, std::abs(a[i] - b[i]));
    return worst;
}

// The root mean square distance of the rendered frames from the encoded sine, taking the first
// as frame `first` of the sine.
double distanceFromSine(const std::vector<float>& rendered, std::int64_t first) {
    double sum = 0.0;
    for (std::size_t i = 0; i < rendered.size(); ++i) {
        double t = static_cast<double>(first + static_cast<std::int64_t>(i / 2)) / engineRate;
        double ideal = amplitude * std::sin(2 * std::numbers::pi * frequency * t);
        sum += (rendered[i] - ideal) * (rendered[i] - ideal);
    }
    return std::sqrt(sum / static_cast<double>(rendered.size()));
}

// Which frame of the sine, near `first`, the rendered frames fit best: `first` itself if the
// decoder is where it says.
std::int64_t bestFittingFrame(const std::vector<float>& rendered, std::int64_t first) {
    std::int64_t best = first;
    for (std::int64_t frame = first - 3; frame <= first + 3; ++frame)
        if (distanceFromSine(rendered, frame) < distanceFromSine(rendered, best))
            best = frame;
    return best;
}

class FfmpegDecoderFormats : public testing::TestWithParam<Source> {};

TEST_P(FfmpegDecoderFormats, RenderTheEncodedSineToItsLengthAndSeekOntoAStraightRun) {
    const Source& source = GetParam();
    TempDir dir;
    Encoded encoded = encodeSine(dir.path(), source);
    ASSERT_FALSE(encoded.path.empty());
    std::unique_ptr<Decoder> decoder = open(encoded.path);
    ASSERT_TRUE(decoder);
    const std::uint64_t length = decoder->lengthFrames();
    double offMs =
        (static_cast<double>(length) - static_cast<double>(encoded.frames)) * 1000.0 / engineRate;
    EXPECT_LE(std::abs(offMs), source.lengthToleranceMs + 1000.0 / engineRate)
        << "length " << length << ", encoded " << encoded.frames;
    EXPECT_EQ(decoder->sourceRate(), source.rate);
    EXPECT_EQ(decoder->sourceChannels(), source.channels);

    std::vector<float> straight = renderAll(*decoder);
    ASSERT_EQ(straight.size() / 2, length);
    float spare[64];
    EXPECT_EQ(decoder->render(spare, 32), 0u);
    if (source.knowsEncoderDelay) {
        const std::size_t from = engineRate / 10, to = length - engineRate / 10;
        std::vector<float> middle(straight.begin() + 2 * from, straight.begin() + 2 * to);
        EXPECT_LE(distanceFromSine(middle, static_cast<std::int64_t>(from)), source.waveTolerance);
    }

    const std::uint64_t targets[] = {
        0, 1, 1151, 4410, 12345, 77777, length / 2 + 7, length / 2 + 333, length - 500};
    for (std::uint64_t target : targets) {
        SCOPED_TRACE("target " + std::to_string(target));
        ASSERT_TRUE(decoder->seek(target));
        std::vector<float> after = renderFrames(*decoder, 4096);
        ASSERT_EQ(after.size() / 2, std::min<std::uint64_t>(4096, length - target));
        EXPECT_LE(maxDifference(after.data(), straight.data() + 2 * target, after.size()),
                  source.seekTolerance);
        // The phase, away from the ends where a lossy coder smears the sudden start and stop.
        if (source.knowsEncoderDelay && (target == 12345 || target == length / 2 + 7)) {
            after.resize(2 * 2048);
            auto first = static_cast<std::int64_t>(target);
            EXPECT_EQ(bestFittingFrame(after, first), first);
            EXPECT_LE(distanceFromSine(after, first), source.waveTolerance);
        }
    }
    ASSERT_TRUE(decoder->seek(length));
    EXPECT_EQ(decoder->render(spare, 32), 0u);

    // A seek past the end is refused and leaves the decoder where it was, to the sample.
    std::unique_ptr<Decoder> fresh = open(encoded.path);
    renderFrames(*fresh, 1000);
    EXPECT_FALSE(fresh->seek(length + 1));
    std::vector<float> rest = renderFrames(*fresh, 5000);
    ASSERT_EQ(rest.size(), 10000u);
    EXPECT_EQ(maxDifference(rest.data(), straight.data() + 2000, rest.size()), 0.0f);
}

INSTANTIATE_TEST_SUITE_P(Sources, FfmpegDecoderFormats, testing::ValuesIn(sources),
                         [](const auto& info) { return info.param.name; });

// What a cut leaves is not an error: the first half of a file still plays. Cut before its first
// frame, the file is not audio.
TEST(FfmpegDecoderDamage, ACutMp3PlaysWhatItHoldsAndOnlyItsFirstBytesFailToOpen) {
    TempDir dir;
    Encoded whole = encodeSine(dir.path(), sources[1]);
    ASSERT_FALSE(whole.path.empty());
    std::string bytes = TempDir::read(whole.path);
    std::unique_ptr<Decoder> half = open(dir.write("half.mp3", bytes.substr(0, bytes.size() / 2)));
    ASSERT_TRUE(half);
    double played = static_cast<double>(renderAll(*half).size() / 2);
    EXPECT_NEAR(played, whole.frames / 2.0, engineRate * 0.1);

    std::string cut = dir.write("cut.mp3", bytes.substr(0, 200));
    EngineError error = EngineError::Unknown;
    std::string log = logOf([&] { EXPECT_FALSE(openFfmpegDecoder(cut, error)); });
    EXPECT_EQ(error, EngineError::FileFormat);
    EXPECT_NE(log.find(cut), std::string::npos) << log;
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
}

} // namespace
