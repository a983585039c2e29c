// Our FFmpeg decoder against the ffmpeg command on the same five-minute MP3, both giving stereo
// float at 44100 Hz: the CPU time (user + system) of opening and decoding the whole file. Starting
// the command costs it about 0.2 s of CPU (it loads some hundred libraries), as much as decoding
// three minutes, so its start-up, measured by the same command stopped after a tenth of a second,
// is taken off its figure; ours keeps its open. Ours may take at most 15% more.
#include "benchSupport.h"
#include "media/encodedAudio.h"
#include "media/process.h"
#include "playback/engine/decoder.h"

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

namespace {

constexpr double songSeconds = 300.0;

// Encoded once; an encode that was interrupted leaves only its .part file, which is redone.
std::string ensureSong(const std::filesystem::path& folder) {
    namespace fs = std::filesystem;
    fs::path song = folder / "music.mp3";
    std::error_code error;
    if (fs::exists(song, error))
        return song.string();
    fs::create_directories(folder, error);
    std::printf("encoding %s ...\n", song.c_str());
    std::string wav = (folder / "music.wav").string();
    std::string part = (folder / "music.part.mp3").string();
    bool made = !media::writeMusicWav(wav, songSeconds, engineRate, 2, 2024).empty() &&
                !media::encodeAudio(wav, part).empty();
    fs::remove(wav, error);
    if (!made)
        return {};
    fs::rename(part, song, error);
    return error ? std::string() : song.string();
}

double processCpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Opens and decodes the whole song into a scratch buffer, as a decode thread would; -1 on failure.
double cpuSecondsOfOurs(const std::string& song, std::vector<float>& scratch,
                        std::uint64_t& frames) {
    double start = processCpuSeconds();
    EngineError error = EngineError::Ok;
    std::unique_ptr<Decoder> decoder = openFfmpegDecoder(song, error);
    if (!decoder)
        return -1.0;
    frames = 0;
    while (std::size_t got = decoder->render(scratch.data(), scratch.size() / 2))
        frames += got;
    decoder.reset();
    return processCpuSeconds() - start;
}

// The command decodes to the same format and throws it away; its rusage is its CPU time.
double cpuSecondsOfFfmpeg(const std::string& song, bool onlyStart) {
    std::vector<std::string> args = {
        "ffmpeg",    "-nostdin", "-hide_banner", "-loglevel", "error", "-i", song,   "-c:a",
        "pcm_f32le", "-ar",      "44100",        "-ac",       "2",     "-f", "null", "-"};
    if (onlyStart)
        args.insert(args.end() - 1, {"-t", "0.1"});
    media::ProgramRun run = media::runProgram(std::move(args));
    return run.ok ? run.cpuSeconds : -1.0;
}

} // namespace

int main(int argc, char** argv) {
    std::filesystem::path folder = argc > 1 ? argv[1] : "bench/work/mp3-vs-ffmpeg";
    std::string song = ensureSong(folder);
    if (song.empty()) {
        std::fprintf(stderr, "cannot make the song under %s\n", folder.c_str());
        return 1;
    }
    std::vector<float> scratch(4096 * 2);
    std::uint64_t frames = 0;
    // Warm the page cache and the libraries, both ways.
    if (cpuSecondsOfOurs(song, scratch, frames) < 0.0 || cpuSecondsOfFfmpeg(song, false) < 0.0) {
        std::fprintf(stderr, "cannot decode %s\n", song.c_str());
        return 1;
    }
    constexpr int rounds = 7;
    std::vector<double> ours, theirs, starts, ratios, rawRatios;
    for (int round = 0; round < rounds; ++round) {
        double our = cpuSecondsOfOurs(song, scratch, frames);
        double their = cpuSecondsOfFfmpeg(song, false);
        double start = cpuSecondsOfFfmpeg(song, true);
        if (our <= 0.0 || their <= 0.0 || start <= 0.0 || start >= their)
            return 1;
        ours.push_back(our);
        theirs.push_back(their);
        starts.push_back(start);
        ratios.push_back(our / (their - start));
        rawRatios.push_back(our / their);
    }
    bench::printInfoRow("mp3-decoded", static_cast<double>(frames) / engineRate, "s");
    bench::printInfoRow("mp3-ours-median", bench::median(ours) * 1000.0, "ms");
    bench::printInfoRow("mp3-ffmpeg-median", bench::median(theirs) * 1000.0, "ms");
    bench::printInfoRow("mp3-ffmpeg-start-median", bench::median(starts) * 1000.0, "ms");
    bench::printInfoRow("mp3-vs-ffmpeg-with-its-start", bench::median(rawRatios), "x");
    return bench::printRow("mp3-vs-ffmpeg", bench::median(ratios), "x", 1.15) ? 0 : 1;
}
