#include "media/encodedAudio.h"
#include "playback/engine/decoder.h"
#include "support/tempDir.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <numbers>
#include <random>

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

std::vector<float> renderFrames(Decoder& decoder, std::size_t frames) {
    std::vector<float> out(frames * 2);
    std::size_t got = 0;
    while (got < frames) {
        std::size_t n =
            decoder.render(out.data() + got * 2, std::min<std::size_t>(frames - got, 1000));
        if (n == 0)
            break;
        got += n;
    }
    out.resize(got * 2);
    return out;
}

std::vector<float> renderAll(Decoder& decoder) {
    return renderFrames(decoder, decoder.lengthFrames() + engineRate);
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

class FfmpegDecoderFormats : public testing::TestWithParam<Source> {
  public:
    // Each source is encoded once for all its tests: starting ffmpeg costs half a second.
    static void SetUpTestSuite() { dir_ = std::make_unique<TempDir>(); }
    static void TearDownTestSuite() {
        encodedSources_.clear();
        dir_.reset();
    }

  protected:
    void SetUp() override {
        auto [it, added] = encodedSources_.try_emplace(GetParam().name);
        if (added)
            it->second = encodeSine(dir_->mkdir(GetParam().name), GetParam());
        encoded_ = it->second;
        ASSERT_FALSE(encoded_.path.empty());
        EngineError error = EngineError::Unknown;
        decoder_ = openFfmpegDecoder(encoded_.path, error);
        ASSERT_TRUE(decoder_) << "error " << static_cast<int>(error);
        EXPECT_EQ(error, EngineError::Ok);
    }
    std::unique_ptr<Decoder> reopen() {
        EngineError error = EngineError::Unknown;
        return openFfmpegDecoder(encoded_.path, error);
    }

    static inline std::unique_ptr<TempDir> dir_;
    static inline std::map<std::string, Encoded> encodedSources_;
    Encoded encoded_;
    std::unique_ptr<Decoder> decoder_;
};

TEST_P(FfmpegDecoderFormats, LengthIsTheEncodedLength) {
    double offMs =
        (static_cast<double>(decoder_->lengthFrames()) - static_cast<double>(encoded_.frames)) *
        1000.0 / engineRate;
    EXPECT_LE(std::abs(offMs), GetParam().lengthToleranceMs + 1000.0 / engineRate)
        << "length " << decoder_->lengthFrames() << ", encoded " << encoded_.frames;
    EXPECT_EQ(decoder_->sourceRate(), GetParam().rate);
    EXPECT_EQ(decoder_->sourceChannels(), GetParam().channels);
}

TEST_P(FfmpegDecoderFormats, RenderingToTheEndGivesTheLength) {
    std::vector<float> all = renderAll(*decoder_);
    EXPECT_EQ(all.size() / 2, decoder_->lengthFrames());
    float after[64];
    EXPECT_EQ(decoder_->render(after, 32), 0u);
}

TEST_P(FfmpegDecoderFormats, OutputIsTheSineInBothChannels) {
    if (!GetParam().knowsEncoderDelay)
        GTEST_SKIP() << "the sine starts after an unknown delay";
    // Away from the ends, where a lossy coder smears the sudden start and stop.
    std::vector<float> all = renderAll(*decoder_);
    const std::size_t from = engineRate / 10, to = all.size() / 2 - engineRate / 10;
    std::vector<float> middle(all.begin() + 2 * from, all.begin() + 2 * to);
    EXPECT_LE(distanceFromSine(middle, static_cast<std::int64_t>(from)), GetParam().waveTolerance);
}

TEST_P(FfmpegDecoderFormats, SeekGivesTheFramesOfAStraightRun) {
    std::vector<float> straight = renderAll(*decoder_);
    const std::uint64_t length = decoder_->lengthFrames();
    const std::uint64_t targets[] = {0, 1, 1151, 4410, 77777, length / 2 + 333, length - 500};
    for (std::uint64_t target : targets) {
        SCOPED_TRACE("target " + std::to_string(target));
        ASSERT_TRUE(decoder_->seek(target));
        std::vector<float> after = renderFrames(*decoder_, 4096);
        std::size_t expected = std::min<std::size_t>(4096, straight.size() / 2 - target);
        ASSERT_EQ(after.size() / 2, expected);
        EXPECT_LE(maxDifference(after.data(), straight.data() + 2 * target, after.size()),
                  GetParam().seekTolerance);
    }
}

TEST_P(FfmpegDecoderFormats, SeekLandsOnThePhaseOfTheSine) {
    if (!GetParam().knowsEncoderDelay)
        GTEST_SKIP() << "the sine starts after an unknown delay";
    for (std::uint64_t target : {std::uint64_t{12345}, decoder_->lengthFrames() / 2 + 7}) {
        SCOPED_TRACE("target " + std::to_string(target));
        ASSERT_TRUE(decoder_->seek(target));
        std::vector<float> after = renderFrames(*decoder_, 2048);
        EXPECT_EQ(bestFittingFrame(after, static_cast<std::int64_t>(target)), target);
        EXPECT_LE(distanceFromSine(after, static_cast<std::int64_t>(target)),
                  GetParam().waveTolerance);
    }
}

TEST_P(FfmpegDecoderFormats, SeekPastTheEndIsRefusedAndTheDecoderStaysPut) {
    std::vector<float> straight = renderFrames(*reopen(), 6000);
    renderFrames(*decoder_, 1000);
    EXPECT_FALSE(decoder_->seek(decoder_->lengthFrames() + 1));
    std::vector<float> rest = renderFrames(*decoder_, 5000);
    ASSERT_EQ(rest.size(), 10000u);
    EXPECT_EQ(maxDifference(rest.data(), straight.data() + 2000, rest.size()), 0.0f);
}

TEST_P(FfmpegDecoderFormats, SeekToTheEndRendersNothing) {
    ASSERT_TRUE(decoder_->seek(decoder_->lengthFrames()));
    float out[64];
    EXPECT_EQ(decoder_->render(out, 32), 0u);
}

INSTANTIATE_TEST_SUITE_P(Sources, FfmpegDecoderFormats, testing::ValuesIn(sources),
                         [](const auto& info) { return info.param.name; });

// A file cut in half still has its first half to play; what the cut leaves is not an error.
TEST(FfmpegDecoderDamage, FileCutInHalfPlaysItsFirstHalf) {
    TempDir dir;
    Encoded whole = encodeSine(dir.path(), sources[1]);
    ASSERT_FALSE(whole.path.empty());
    std::ifstream in(whole.path, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::string half = dir.write("half.mp3", bytes.substr(0, bytes.size() / 2)).string();
    EngineError error = EngineError::Unknown;
    auto decoder = openFfmpegDecoder(half, error);
    ASSERT_TRUE(decoder);
    std::size_t played = renderAll(*decoder).size() / 2;
    EXPECT_NEAR(static_cast<double>(played), whole.frames / 2.0, engineRate * 0.1);
}

struct BadFile {
    const char* name;
    // Makes the file in dir and returns its path.
    std::string (*make)(const TempDir& dir);
    EngineError error;
};

void PrintTo(const BadFile& bad, std::ostream* os) {
    *os << bad.name;
}

std::string firstBytesOfAnMp3(const TempDir& dir) {
    Encoded whole = encodeSine(dir.path(), sources[1]);
    std::ifstream in(whole.path, std::ios::binary);
    std::string bytes(200, '\0');
    in.read(bytes.data(), 200);
    return dir.write("cut.mp3", bytes).string();
}

std::string randomBytes(const TempDir& dir) {
    std::mt19937 rng(7);
    std::string bytes(64 * 1024, '\0');
    for (char& c : bytes)
        c = static_cast<char>(rng());
    return dir.write("noise.flac", bytes).string();
}

const BadFile badFiles[] = {
    {"missing", [](const TempDir& dir) { return (dir.path() / "absent.mp3").string(); },
     EngineError::FileOpen},
    {"folder", [](const TempDir& dir) { return dir.mkdir("folder.mp3").string(); },
     EngineError::FileOpen},
    {"text",
     [](const TempDir& dir) {
         return dir.write("notes.mp3", "These are not the songs you are looking for.\n").string();
     },
     EngineError::FileFormat},
    {"randomBytes", randomBytes, EngineError::FileFormat},
    {"first200BytesOfAnMp3", firstBytesOfAnMp3, EngineError::FileFormat},
    {"videoWithoutSound",
     [](const TempDir& dir) { return media::writeVideoOnly((dir.path() / "v.mkv").string()); },
     EngineError::FileFormat},
};

class FfmpegDecoderBadFiles : public testing::TestWithParam<BadFile> {};

TEST_P(FfmpegDecoderBadFiles, FailWithTheirErrorAndOneLogLine) {
    TempDir dir;
    std::string path = GetParam().make(dir);
    ASSERT_FALSE(path.empty());
    EngineError error = EngineError::Unknown;
    testing::internal::CaptureStdout();
    auto decoder = openFfmpegDecoder(path, error);
    std::string log = testing::internal::GetCapturedStdout();
    EXPECT_FALSE(decoder);
    EXPECT_EQ(error, GetParam().error);
    EXPECT_NE(log.find(path), std::string::npos) << log;
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
}

INSTANTIATE_TEST_SUITE_P(Files, FfmpegDecoderBadFiles, testing::ValuesIn(badFiles),
                         [](const auto& info) { return info.param.name; });

} // namespace
