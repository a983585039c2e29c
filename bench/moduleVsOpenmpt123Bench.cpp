// Our module decoder against openmpt123 on the same 32-channel song of nearly four minutes:
// both render it through libopenmpt at 44100 Hz stereo float with 8-tap sinc interpolation, the
// library's volume ramping and a stop at the song's end, and both write the raw floats to a file
// in the work folder (openmpt123 cannot render to memory, so ours writes what it renders too).
// The two files must be identical, or the settings differ and the figure means nothing. Costs
// are user+system CPU time, loading the module and its prescan included on both sides; ours may
// take at most 15% more than openmpt123.
#include "benchSupport.h"
#include "media/moduleWriter.h"
#include "media/process.h"
#include "playback/engine/decoder.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace {

// 30 patterns of 64 rows at speed 6 and 125 BPM: 230.4 seconds.
constexpr media::TrackerSong song{.patterns = 30, .channels = 32, .seed = 2024};
// libopenmpt's float rounding depends a little on the block size it is asked for; openmpt123 asks
// for 1024 frames at a time, so ours does too and the two outputs can be compared bit for bit.
constexpr std::size_t chunkFrames = 1024;

double cpuSeconds(const rusage& usage) {
    auto seconds = [](const timeval& t) { return t.tv_sec + t.tv_usec / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double cpuSecondsOfSelf() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return cpuSeconds(usage);
}

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

// Opened, prescanned, rendered to its end and written out, as openmpt123 --render does.
std::optional<double> secondsOfOurs(const std::string& module, const std::string& output) {
    double start = cpuSecondsOfSelf();
    EngineError error = EngineError::Ok;
    std::unique_ptr<Decoder> decoder = openModuleDecoder(module, error);
    std::unique_ptr<std::FILE, CloseFile> file(std::fopen(output.c_str(), "wb"));
    if (!decoder || !file)
        return std::nullopt;
    std::vector<float> chunk(2 * chunkFrames);
    while (std::size_t got = decoder->render(chunk.data(), chunkFrames))
        if (std::fwrite(chunk.data(), 2 * sizeof(float), got, file.get()) != got)
            return std::nullopt;
    if (std::fclose(file.release()) != 0)
        return std::nullopt;
    return cpuSecondsOfSelf() - start;
}

// openmpt123 writes MODULE.raw beside the module; its CPU time comes from wait4.
std::optional<double> secondsOfOpenmpt123(const std::string& module) {
    std::vector<std::string> args = {"openmpt123",
                                     "--render",
                                     "--force",
                                     "--quiet",
                                     "--samplerate",
                                     "44100",
                                     "--channels",
                                     "2",
                                     "--float",
                                     "--filter",
                                     "8",
                                     "--ramping",
                                     "-1",
                                     "--ctl",
                                     "play.at_end=stop",
                                     "--output-type",
                                     "raw",
                                     "--",
                                     module};
    media::ProgramRun run = media::runProgram(std::move(args), /*quietErrors=*/true);
    if (!run.ok)
        return std::nullopt;
    return run.cpuSeconds;
}

// Byte for byte, a chunk at a time: each file holds some 80 MB of floats.
bool sameNonEmptyFiles(const std::string& first, const std::string& second) {
    std::ifstream a(first, std::ios::binary), b(second, std::ios::binary);
    std::vector<char> chunkA(1 << 20), chunkB(1 << 20);
    bool any = false;
    while (a && b) {
        a.read(chunkA.data(), static_cast<std::streamsize>(chunkA.size()));
        b.read(chunkB.data(), static_cast<std::streamsize>(chunkB.size()));
        if (a.gcount() != b.gcount() ||
            !std::equal(chunkA.begin(), chunkA.begin() + a.gcount(), chunkB.begin()))
            return false;
        any = any || a.gcount() > 0;
    }
    return any && a.eof() && b.eof();
}

} // namespace

int main(int argc, char** argv) {
    std::filesystem::path folder = argc > 1 ? argv[1] : "bench/work/module-vs-openmpt123";
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    std::string module = (folder / "heavy.mod").string();
    std::string ours = (folder / "ours.raw").string();
    std::string theirs = module + ".raw";
    std::optional<double> songSeconds = media::writeMod(module, song);
    if (!songSeconds) {
        std::fprintf(stderr, "cannot write %s\n", module.c_str());
        return 1;
    }
    // The warm-up, which also proves that both sides render the same song the same way.
    if (!secondsOfOurs(module, ours) || !secondsOfOpenmpt123(module)) {
        std::fprintf(stderr, "a render of %s failed (is openmpt123 installed?)\n", module.c_str());
        return 1;
    }
    if (!sameNonEmptyFiles(ours, theirs)) {
        std::fprintf(stderr, "%s and %s differ: the two sides do not render alike\n", ours.c_str(),
                     theirs.c_str());
        return 1;
    }
    constexpr int rounds = 7;
    std::vector<double> ourTimes, theirTimes, ratios;
    for (int round = 0; round < rounds; ++round) {
        // Each side goes first in every other round, so neither always finds the caches warmer.
        std::optional<double> mine, reference;
        if (round % 2 == 0) {
            mine = secondsOfOurs(module, ours);
            reference = secondsOfOpenmpt123(module);
        } else {
            reference = secondsOfOpenmpt123(module);
            mine = secondsOfOurs(module, ours);
        }
        if (!mine || !reference || *reference <= 0.0)
            return 1;
        ourTimes.push_back(*mine);
        theirTimes.push_back(*reference);
        ratios.push_back(*mine / *reference);
    }
    // Some 160 MB of floats that nobody reads again.
    std::filesystem::remove(ours, ignored);
    std::filesystem::remove(theirs, ignored);
    bench::printInfoRow("module-song-length", *songSeconds, "s");
    bench::printInfoRow("module-ours-cpu", bench::median(ourTimes) * 1000.0, "ms");
    bench::printInfoRow("module-openmpt123-cpu", bench::median(theirTimes) * 1000.0, "ms");
    return bench::printRow("module-vs-openmpt123", bench::median(ratios), "x", 1.15) ? 0 : 1;
}
