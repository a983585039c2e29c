#include "playback/engine/decoder.h"
#include "playback/engine/fileBytes.h"
#include "util/log.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <libopenmpt/libopenmpt.h>
#include <memory>
#include <optional>
#include <vector>

namespace {

// libopenmpt's own recommendations, set explicitly so that a change of its defaults cannot
// change what the player sounds like without anyone noticing.
constexpr int interpolationTaps = 8; // windowed sinc
constexpr int rampingStrength = -1;  // the library's recommended volume ramping

struct DestroyModule {
    void operator()(openmpt_module* module) const { openmpt_module_destroy(module); }
};
using ModulePtr = std::unique_ptr<openmpt_module, DestroyModule>;

struct FreeOpenmptString {
    void operator()(const char* text) const { openmpt_free_string(text); }
};
using OpenmptString = std::unique_ptr<const char, FreeOpenmptString>;

// The whole file in memory: libopenmpt reads a module in one go anyway, and reading it ourselves
// tells a missing or unreadable file apart from one that is not a module.
std::optional<std::vector<unsigned char>> readModuleFile(const std::string& path,
                                                         EngineError& error) {
    FileBytes read = readFileBytes(path);
    switch (read.error) {
    case FileReadError::None:
        return std::move(read.bytes);
    case FileReadError::Open:
        logOut("module: cannot open %s: %s\n", path.c_str(), std::strerror(read.errorNumber));
        error = EngineError::FileOpen;
        return std::nullopt;
    case FileReadError::Read:
        logOut("module: cannot read %s: %s\n", path.c_str(), std::strerror(read.errorNumber));
        error = EngineError::FileOpen;
        return std::nullopt;
    case FileReadError::Memory:
        break;
    }
    logOut("module: %s does not fit in memory\n", path.c_str());
    error = EngineError::Memory;
    return std::nullopt;
}

enum class Samples { Load, Skip };

// Quiet while loading and for ever after: a damaged module must not write to our error stream
// from the decode thread; a failure here is told once, by our own line. Without its samples a
// module loads several times faster (an IT file decompresses them) and prescans to the same
// length, which comes from its patterns alone.
ModulePtr createModule(const std::vector<unsigned char>& bytes, const std::string& path,
                       Samples samples, EngineError& error) {
    int code = OPENMPT_ERROR_OK;
    const char* message = nullptr;
    const openmpt_module_initial_ctl skip[] = {{"load.skip_samples", "1"}, {nullptr, nullptr}};
    ModulePtr module(openmpt_module_create_from_memory2(
        bytes.data(), bytes.size(), openmpt_log_func_silent, nullptr, openmpt_error_func_store,
        nullptr, &code, &message, samples == Samples::Skip ? skip : nullptr));
    OpenmptString owned(message);
    if (module)
        return module;
    bool outOfMemory = code == OPENMPT_ERROR_OUT_OF_MEMORY;
    logOut("module: %s is not a module libopenmpt can load (%s)\n", path.c_str(),
           message ? message : "no reason given");
    error = outOfMemory ? EngineError::Memory : EngineError::FileFormat;
    return nullptr;
}

// Played once and stopped at its end (no fade-out tail past the length we report); a seek
// restores the notes already sounding, so that it lands on the same audio as playing through.
bool applySettings(openmpt_module* module) {
    const bool applied[] = {
        openmpt_module_set_repeat_count(module, 0) == 1,
        openmpt_module_ctl_set_text(module, "play.at_end", "stop") == 1,
        openmpt_module_ctl_set_boolean(module, "seek.sync_samples", 1) == 1,
        openmpt_module_set_render_param(module, OPENMPT_MODULE_RENDER_INTERPOLATIONFILTER_LENGTH,
                                        interpolationTaps) == 1,
        openmpt_module_set_render_param(module, OPENMPT_MODULE_RENDER_VOLUMERAMPING_STRENGTH,
                                        rampingStrength) == 1,
    };
    return std::ranges::all_of(applied, [](bool ok) { return ok; });
}

std::uint64_t secondsToFrames(double seconds) {
    return static_cast<std::uint64_t>(std::llround(seconds * engineRate));
}

class ModuleDecoder final : public Decoder {
  public:
    ModuleDecoder(ModulePtr module, std::uint64_t lengthFrames)
        : module_(std::move(module)), lengthFrames_(lengthFrames) {}

    std::size_t render(float* out, std::size_t frames) override {
        std::size_t done = 0;
        while (done < frames) {
            std::size_t got = openmpt_module_read_interleaved_float_stereo(
                module_.get(), engineRate, frames - done, out + 2 * done);
            if (got == 0)
                break;
            done += got;
        }
        return done;
    }

    bool seek(std::uint64_t frame) override;

    std::uint64_t lengthFrames() const override { return lengthFrames_; }
    // Modules have no rate of their own: they are counted at the rate they are rendered at.
    int sourceRate() const override { return engineRate; }
    int sourceChannels() const override { return 2; }

  private:
    std::uint64_t landOnRowAtOrBefore(std::uint64_t frame);
    void skipFrames(std::uint64_t frames);

    ModulePtr module_;
    std::uint64_t lengthFrames_;
    std::vector<float> scratch_; // rendered and thrown away after a seek
};

// libopenmpt seeks to the start of a row, the first one at or after the time asked for. Asking a
// little earlier each time (twice as far back as before) finds a row start at or before the
// target in a few tries, a row or two early at most.
std::uint64_t ModuleDecoder::landOnRowAtOrBefore(std::uint64_t frame) {
    double target = static_cast<double>(frame) / engineRate;
    double ask = target;
    double landed = openmpt_module_set_position_seconds(module_.get(), ask);
    double step = std::max(landed - target, 0.01);
    while (secondsToFrames(landed) > frame && ask > 0.0) {
        ask = std::max(0.0, target - step);
        step *= 2.0;
        landed = openmpt_module_set_position_seconds(module_.get(), ask);
    }
    return std::min(secondsToFrames(landed), frame);
}

void ModuleDecoder::skipFrames(std::uint64_t frames) {
    constexpr std::size_t chunkFrames = 4096;
    scratch_.resize(2 * chunkFrames);
    while (frames > 0) {
        std::size_t want = static_cast<std::size_t>(std::min<std::uint64_t>(frames, chunkFrames));
        std::size_t got = render(scratch_.data(), want);
        if (got < want)
            return; // the end: nothing more to skip
        frames -= got;
    }
}

bool ModuleDecoder::seek(std::uint64_t frame) {
    if (frame > lengthFrames_)
        return false;
    std::uint64_t rowStart = landOnRowAtOrBefore(frame);
    skipFrames(frame - rowStart);
    return true;
}

// The bytes go to the decode thread, which loads the module again with its samples.
class ModuleOpener final : public SourceOpener {
  public:
    ModuleOpener(std::vector<unsigned char> bytes, std::uint64_t lengthFrames, std::string path)
        : bytes_(std::move(bytes)), lengthFrames_(lengthFrames), path_(std::move(path)) {}

    std::unique_ptr<Decoder> open(const std::vector<SoundFontRef>&, EngineError& error) override {
        ModulePtr module = createModule(bytes_, path_, Samples::Load, error);
        if (!module)
            return nullptr;
        if (!applySettings(module.get()))
            logOut("module: %s: libopenmpt refused a playback setting, playing with its own\n",
                   path_.c_str());
        error = EngineError::Ok;
        return std::make_unique<ModuleDecoder>(std::move(module), lengthFrames_);
    }

  private:
    std::vector<unsigned char> bytes_;
    std::uint64_t lengthFrames_;
    std::string path_;
};

} // namespace

ProbedFile probeModuleFile(const std::string& path, EngineError& error) {
    std::optional<std::vector<unsigned char>> bytes = readModuleFile(path, error);
    if (!bytes)
        return {};
    ModulePtr module = createModule(*bytes, path, Samples::Skip, error);
    if (!module)
        return {};
    // libopenmpt scans the whole song for its length when it loads it.
    double seconds = openmpt_module_get_duration_seconds(module.get());
    if (!std::isfinite(seconds) || seconds < 0.0) {
        logOut("module: %s has no length that libopenmpt can tell\n", path.c_str());
        error = EngineError::FileFormat;
        return {};
    }
    SourceFacts facts{secondsToFrames(seconds), engineRate, 2};
    error = EngineError::Ok;
    return {facts, nullptr,
            std::make_unique<ModuleOpener>(std::move(*bytes), facts.lengthFrames, path)};
}

void warmUpModuleLoader() {
    // A four-channel .mod of one empty pattern: a title, 31 empty samples, one order, "M.K.".
    std::vector<unsigned char> empty(1084 + 1024, 0);
    empty[950] = 1;
    std::memcpy(&empty[1080], "M.K.", 4);
    EngineError ignored = EngineError::Ok;
    createModule(empty, "(warm-up)", Samples::Skip, ignored);
}

std::unique_ptr<Decoder> openModuleDecoder(const std::string& path, EngineError& error) {
    ProbedFile probed = probeModuleFile(path, error);
    return probed.opener ? probed.opener->open({}, error) : nullptr;
}
