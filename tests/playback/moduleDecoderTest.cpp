#include "media/moduleWriter.h"
#include "playback/engine/decoder.h"
#include "support/tempDir.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

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

std::vector<float> renderFrames(Decoder& decoder, std::size_t frames) {
    std::vector<float> out(2 * frames);
    out.resize(2 * decoder.render(out.data(), frames));
    return out;
}

// The largest difference between rendered audio and the straight render from a frame on.
float largestDifference(const std::vector<float>& got, const std::vector<float>& all,
                        std::size_t fromFrame, std::size_t skipFrames) {
    float largest = 0.0f;
    for (std::size_t i = 2 * skipFrames; i < got.size(); ++i)
        largest = std::max(largest, std::fabs(got[i] - all[2 * fromFrame + i]));
    return largest;
}

class ModuleFormat : public testing::TestWithParam<Format> {
  protected:
    std::unique_ptr<Decoder> open() {
        std::string path = dir_.str() + "/song" + GetParam().extension;
        std::optional<double> seconds = GetParam().write(path, GetParam().song);
        EXPECT_TRUE(seconds.has_value());
        trueSeconds_ = seconds.value_or(0.0);
        EngineError error = EngineError::Ok;
        std::unique_ptr<Decoder> decoder = openModuleDecoder(path, error);
        EXPECT_EQ(error, EngineError::Ok);
        return decoder;
    }

    TempDir dir_;
    double trueSeconds_ = 0.0;
};

} // namespace

TEST_P(ModuleFormat, LengthIsTheSongsTrueDurationAndPlayStopsThereForGood) {
    std::unique_ptr<Decoder> decoder = open();
    ASSERT_TRUE(decoder);
    EXPECT_NEAR(decoder->lengthFrames() / 44100.0, trueSeconds_, 0.050);
    EXPECT_EQ(decoder->sourceRate(), 44100);
    EXPECT_EQ(decoder->sourceChannels(), 2);

    bool onlyLastShort = false;
    std::vector<float> all = renderToEnd(*decoder, onlyLastShort);
    EXPECT_TRUE(onlyLastShort);
    // No loop and no fade-out tail: the frames played are the length reported, to 1 ms or 0.1%.
    // libopenmpt's prescan counts a tick at 140 BPM as 787.4 frames where its mixer plays 787.
    double length = static_cast<double>(decoder->lengthFrames());
    EXPECT_NEAR(static_cast<double>(all.size() / 2), length, std::max(44.0, length / 1000));
    EXPECT_GT(*std::max_element(all.begin(), all.end()), 0.05f);
    EXPECT_TRUE(renderFrames(*decoder, chunkFrames).empty());
    EXPECT_TRUE(renderFrames(*decoder, chunkFrames).empty());
}

// A seek lands on the very frame asked for: after the first 10 ms, in which the resampler and
// the volume ramps start afresh, every sample is the straight render's to 1e-4 (libopenmpt rounds
// a little differently in other block sizes). The audio one frame later differs by far more, so
// a seek that is off by a single frame fails.
TEST_P(ModuleFormat, SeekLandsOnTheSameAudioAsPlayingThrough) {
    std::unique_ptr<Decoder> decoder = open();
    ASSERT_TRUE(decoder);
    bool onlyLastShort = false;
    std::vector<float> all = renderToEnd(*decoder, onlyLastShort);
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
    EXPECT_LT(largestDifference(renderFrames(*decoder, compared), all, 0, settle), 1e-4f);
}

TEST_P(ModuleFormat, SeekBeyondTheEndIsRefusedAndPlayGoesOnWhereItWas) {
    std::unique_ptr<Decoder> decoder = open();
    ASSERT_TRUE(decoder);
    std::vector<float> straight = renderFrames(*decoder, 20000);
    ASSERT_TRUE(decoder->seek(0));
    renderFrames(*decoder, 10000);
    EXPECT_FALSE(decoder->seek(decoder->lengthFrames() + 1));
    EXPECT_FALSE(decoder->seek(UINT64_MAX));
    std::vector<float> next = renderFrames(*decoder, 10000);
    EXPECT_EQ(next, std::vector<float>(straight.begin() + 20000, straight.end()));
}

INSTANTIATE_TEST_SUITE_P(Formats, ModuleFormat, testing::ValuesIn(formats),
                         [](const auto& info) { return std::string(info.param.name); });

namespace {

std::string readBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

std::string randomBytes(std::size_t size) {
    std::mt19937 rng(7);
    std::string bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(rng() & 0xFF);
    return bytes;
}

// A four-channel .mod of one pattern: 1084 bytes of header, 1024 of pattern, 768 of samples.
std::string modBytes(const TempDir& dir) {
    std::string path = dir.str() + "/whole.mod";
    EXPECT_TRUE(media::writeMod(path).has_value());
    return readBytes(path);
}

struct BadFile {
    const char* name;
    std::string (*bytes)(const TempDir&); // null: no file at all
    bool folder;
    EngineError error;
    const char* logged;
};

const BadFile badFiles[] = {
    {"RandomBytesNamedXm.xm", [](const TempDir&) { return randomBytes(4096); }, false,
     EngineError::FileFormat, "is not a module libopenmpt can load"},
    {"TextNamedMod.mod",
     [](const TempDir&) { return std::string("Not a module at all.\nJust a few lines.\n"); }, false,
     EngineError::FileFormat, "is not a module libopenmpt can load"},
    {"EmptyFile.it", [](const TempDir&) { return std::string(); }, false, EngineError::FileFormat,
     "is not a module libopenmpt can load"},
    {"ModCutBeforeItsFormatTag.mod",
     [](const TempDir& dir) { return modBytes(dir).substr(0, 1000); }, false,
     EngineError::FileFormat, "is not a module libopenmpt can load"},
    {"Missing.s3m", nullptr, false, EngineError::FileOpen, "cannot open"},
    {"FolderNamedMtm.mtm", nullptr, true, EngineError::FileOpen, "cannot read"},
};

class BadModule : public testing::TestWithParam<BadFile> {};

} // namespace

TEST_P(BadModule, FailsWithOneLogLineNamingThePath) {
    TempDir dir;
    const BadFile& bad = GetParam();
    std::string path = dir.str() + "/" + bad.name;
    if (bad.folder)
        dir.mkdir(bad.name);
    else if (bad.bytes)
        dir.write(bad.name, bad.bytes(dir));
    EngineError error = EngineError::Ok;
    CaptureStdout();
    std::unique_ptr<Decoder> decoder = openModuleDecoder(path, error);
    std::string log = GetCapturedStdout();
    EXPECT_FALSE(decoder);
    EXPECT_EQ(error, bad.error);
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
    EXPECT_NE(log.find(path), std::string::npos) << log;
    EXPECT_NE(log.find(bad.logged), std::string::npos) << log;
}

INSTANTIATE_TEST_SUITE_P(Files, BadModule, testing::ValuesIn(badFiles), [](const auto& info) {
    std::string name = info.param.name;
    return name.substr(0, name.find('.'));
});

// libopenmpt plays what a cut module still holds, as trackers do: old modules often lack the end
// of their last sample. Its order list and patterns give the length, so that stays whole; what
// is missing is silent, and the song still plays to its end and stops.
TEST(ModuleDecoder, ModuleCutAfterItsHeaderPlaysToItsFullLengthWithoutComplaint) {
    TempDir dir;
    std::string whole = modBytes(dir);
    for (std::size_t keep : {std::size_t{1084 + 1024 + 300}, std::size_t{1084 + 512}}) {
        SCOPED_TRACE(keep);
        std::string path = dir.write("cut.mod", whole.substr(0, keep)).string();
        EngineError error = EngineError::Ok;
        CaptureStdout();
        std::unique_ptr<Decoder> decoder = openModuleDecoder(path, error);
        EXPECT_EQ(GetCapturedStdout(), "");
        ASSERT_TRUE(decoder);
        EXPECT_EQ(error, EngineError::Ok);
        EXPECT_NEAR(decoder->lengthFrames() / 44100.0, 7.68, 0.050);
        bool onlyLastShort = false;
        std::vector<float> all = renderToEnd(*decoder, onlyLastShort);
        EXPECT_NEAR(static_cast<double>(all.size() / 2),
                    static_cast<double>(decoder->lengthFrames()), 44.0);
        EXPECT_TRUE(renderFrames(*decoder, chunkFrames).empty());
    }
}
