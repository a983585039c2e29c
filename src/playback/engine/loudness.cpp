#include "playback/engine/loudness.h"

#include "playback/engine/decoder.h"
#include "playback/engine/decoderRoles.h"
#include "util/ascii.h"
#include "util/log.h"
#include "util/paths.h"

#include <algorithm>
#include <cmath>
#include <ebur128.h>
#include <vector>

namespace {

struct MeterStateFree {
    void operator()(ebur128_state* state) const { ebur128_destroy(&state); }
};
using MeterState = std::unique_ptr<ebur128_state, MeterStateFree>;

constexpr std::size_t blockFrames = 4096;
constexpr std::uint64_t longestMeasured = std::uint64_t{3600} * engineRate;
// One gating block of EBU R128: a song shorter than that has no integrated loudness.
constexpr std::uint64_t gatingBlockFrames = engineRate * 4 / 10;

LoudnessFigures outcome(LoudnessOutcome what) {
    return LoudnessFigures{what, 0.0, 0.0};
}

// The figures of what the meter was fed; Silent where nothing passed the gates.
LoudnessFigures figuresOf(ebur128_state* state, std::uint64_t frames) {
    double lufs = 0.0;
    if (frames < gatingBlockFrames || ebur128_loudness_global(state, &lufs) != EBUR128_SUCCESS ||
        !std::isfinite(lufs))
        return outcome(LoudnessOutcome::Silent);
    double peak = 0.0;
    for (unsigned channel = 0; channel < 2; ++channel) {
        double channelPeak = 0.0;
        if (ebur128_true_peak(state, channel, &channelPeak) == EBUR128_SUCCESS)
            peak = std::max(peak, channelPeak);
    }
    if (peak <= 0.0)
        return outcome(LoudnessOutcome::Silent);
    return LoudnessFigures{LoudnessOutcome::Measured, lufs, 20.0 * std::log10(peak)};
}

} // namespace

LoudnessMeter::LoudnessMeter() = default;
LoudnessMeter::~LoudnessMeter() = default;

LoudnessFigures LoudnessMeter::measure(const std::string& path, bool module,
                                       const std::string& fontPath, const std::atomic<bool>& stop) {
    EngineError error = EngineError::Ok;
    std::unique_ptr<Decoder> decoder;
    if (module) {
        decoder = openModuleDecoder(path, error);
    } else if (roleOfExtension(asciiLower(extensionOf(fileNameOf(path)))) == "midi") {
        if (fontPath.empty()) {
            logOut("loudness: no soundfont to measure %s through\n", path.c_str());
            return outcome(LoudnessOutcome::Failed);
        }
        if (!font_ || fontPath_ != fontPath) {
            font_.reset(); // one parse at a time
            font_ = loadSoundFont(fontPath, error);
            fontPath_ = font_ ? fontPath : std::string();
        }
        if (font_)
            decoder = openMidiDecoder(path, {font_}, error);
    } else {
        decoder = openFfmpegDecoder(path, error);
    }
    if (!decoder)
        return outcome(LoudnessOutcome::Failed);

    MeterState state(ebur128_init(2, engineRate, EBUR128_MODE_I | EBUR128_MODE_TRUE_PEAK));
    if (!state) {
        logOut("loudness: no memory to measure %s\n", path.c_str());
        return outcome(LoudnessOutcome::Failed);
    }
    std::vector<float> block(blockFrames * 2);
    std::uint64_t frames = 0;
    while (frames < longestMeasured) {
        if (stop.load(std::memory_order_relaxed))
            return outcome(LoudnessOutcome::Stopped);
        std::size_t got = decoder->render(block.data(), blockFrames);
        if (got == 0)
            break;
        ebur128_add_frames_float(state.get(), block.data(), got);
        frames += got;
        if (got < blockFrames)
            break;
    }
    return figuresOf(state.get(), frames);
}
