// loudness-scan and loudness-scan-midi: the CPU time (user + system) of measuring a song's EBU R128
// integrated loudness and true peak, ours (LoudnessMeter: the engine's decoder and libebur128 on
// this thread) against the ffmpeg command's ebur128 filter on the same file. argv[1] ends in the
// figure's name, which picks the figure; each is the median over five rounds of ours over theirs,
// and ours may take at most 20% more.
//
// loudness-scan: the same music as MP3, M4A and FLAC, and a module, some forty seconds each. The
// command's start-up (some hundred libraries loaded) is taken off its side as mp3-vs-ffmpeg does,
// measured by the command stopped after a tenth of a second on the FLAC, whose open costs nothing:
// opening the module (libopenmpt's scan of the whole song) stays on both sides.
// loudness-scan-midi: a dense General MIDI song through the font midi-vs-fluidsynth uses, ours
// loading the font each round, against `fluidsynth -F out.wav` rendering it and the command
// measuring that file (its start-up taken off the same way).
//
// Both sides must agree on the figures, within half a unit, or they do not measure the same
// sound and the ratio means nothing.
#include "benchSongs.h"
#include "benchSupport.h"
#include "media/midiWriter.h"
#include "media/process.h"
#include "playback/engine/loudness.h"

#include <atomic>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int rounds = 5;
constexpr double songSeconds = 40.0;
constexpr double midiSeconds = 30.0;
constexpr double quietSeconds = 10.0; // the MIDI song's tracks run on past its last note
constexpr double agreement = 0.5;     // LU and dB
constexpr const char* bigFont = "/usr/share/sounds/sf2/FluidR3_GM.sf2";
constexpr const char* smallFont = "/usr/share/sounds/sf2/TimGM6mb.sf2";

struct Measured {
    double cpu = -1.0; // seconds; below 0 when the measurement failed
    double lufs = 0.0;
    double peakDb = 0.0;
};

double cpuSecondsOfSelf() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    auto seconds = [](const timeval& t) { return double(t.tv_sec) + double(t.tv_usec) * 1e-6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

Measured measureOurs(LoudnessMeter& meter, const std::string& song, bool module,
                     const std::string& font) {
    std::atomic<bool> stop{false};
    double start = cpuSecondsOfSelf();
    LoudnessFigures figures = meter.measure(song, module, font, stop);
    double used = cpuSecondsOfSelf() - start;
    if (figures.outcome != LoudnessOutcome::Measured)
        return {};
    return {used, figures.lufs, figures.truePeakDb};
}

// The number after `label` in the filter's closing summary, which follows its frame lines.
std::optional<double> summaryFigure(const std::string& log, const std::string& label) {
    std::size_t summary = log.rfind("Summary:");
    std::size_t at = summary == std::string::npos ? summary : log.find(label, summary);
    if (at == std::string::npos)
        return std::nullopt;
    std::istringstream rest(log.substr(at + label.size(), 32));
    double value = 0.0;
    return rest >> value ? std::optional<double>(value) : std::nullopt;
}

// `ffmpeg -nostats -i FILE -af ebur128=peak=true -f null -`, its errors (where the filter writes)
// to `log`; a module is rendered at our rate. onlyStart stops it after a tenth of a second.
Measured measureWithFfmpeg(const std::string& song, bool module, const std::string& log,
                           bool onlyStart) {
    std::vector<std::string> args = {"ffmpeg", "-nostats"};
    if (module)
        args.insert(args.end(), {"-sample_rate", "44100"});
    args.insert(args.end(), {"-i", song, "-af", "ebur128=peak=true"});
    if (onlyStart)
        args.insert(args.end(), {"-t", "0.1"});
    args.insert(args.end(), {"-f", "null", "-"});
    media::ProgramRun run;
    {
        bench::OutputToFile errors(log, STDERR_FILENO);
        run = media::runProgram(std::move(args));
    }
    std::ifstream in(log);
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::optional<double> lufs = summaryFigure(text, "I:");
    std::optional<double> peak = summaryFigure(text, "Peak:");
    if (!run.ok || !lufs || !peak) {
        std::fprintf(stderr, "ffmpeg could not measure %s (see %s)\n", song.c_str(), log.c_str());
        return {};
    }
    return {run.cpuSeconds, *lufs, *peak};
}

// `fluidsynth -ni -q -F out -r 44100 -O float -T wav font song`; its CPU seconds, -1 on failure.
double renderWithFluidsynth(const std::string& font, const std::string& song,
                            const std::string& out) {
    media::ProgramRun run = media::runProgram({"fluidsynth", "-ni", "-q", "-F", out, "-r", "44100",
                                               "-O", "float", "-T", "wav", font, song});
    return run.ok ? run.cpuSeconds : -1.0;
}

bool agree(const std::string& what, const Measured& ours, const Measured& theirs) {
    std::fprintf(stderr, "%s: ours %.2f LUFS %.2f dBTP, ffmpeg %.2f LUFS %.2f dBTP\n", what.c_str(),
                 ours.lufs, ours.peakDb, theirs.lufs, theirs.peakDb);
    if (std::abs(ours.lufs - theirs.lufs) <= agreement &&
        std::abs(ours.peakDb - theirs.peakDb) <= agreement)
        return true;
    std::fprintf(stderr, "%s: the two sides do not measure the same sound\n", what.c_str());
    return false;
}

struct FileSong {
    const char* family;
    bench::SongKind kind;
    std::string path;
};

int scanFigure(const fs::path& folder) {
    std::vector<FileSong> songs = {{"mp3", bench::SongKind::Mp3, {}},
                                   {"m4a", bench::SongKind::M4a, {}},
                                   {"flac", bench::SongKind::Flac, {}},
                                   {"module", bench::SongKind::Module, {}}};
    for (FileSong& song : songs) {
        song.path = bench::ensureSong(folder, "music", song.kind, songSeconds);
        if (song.path.empty())
            return 1;
    }
    const std::string log = (folder / "ffmpeg.log").string();
    const std::string flac = songs[2].path;
    LoudnessMeter meter;
    // The warm-up, which also proves that both sides hear the same sound.
    for (const FileSong& song : songs) {
        bool module = song.kind == bench::SongKind::Module;
        Measured mine = measureOurs(meter, song.path, module, {});
        Measured theirs = measureWithFfmpeg(song.path, module, log, false);
        if (mine.cpu < 0.0 || theirs.cpu < 0.0 || !agree(song.family, mine, theirs))
            return 1;
    }
    std::vector<std::vector<double>> familyRatios(songs.size());
    std::vector<double> ourTotals, theirTotals, starts, ratios;
    for (int round = 0; round < rounds; ++round) {
        double start = measureWithFfmpeg(flac, false, log, true).cpu;
        if (start <= 0.0)
            return 1;
        double ourTotal = 0.0, theirTotal = 0.0;
        for (std::size_t i = 0; i < songs.size(); ++i) {
            bool module = songs[i].kind == bench::SongKind::Module;
            double mine = measureOurs(meter, songs[i].path, module, {}).cpu;
            double theirs = measureWithFfmpeg(songs[i].path, module, log, false).cpu - start;
            if (mine <= 0.0 || theirs <= 0.0)
                return 1;
            familyRatios[i].push_back(mine / theirs);
            ourTotal += mine;
            theirTotal += theirs;
        }
        starts.push_back(start);
        ourTotals.push_back(ourTotal);
        theirTotals.push_back(theirTotal);
        ratios.push_back(ourTotal / theirTotal);
    }
    for (std::size_t i = 0; i < songs.size(); ++i)
        bench::printInfoRow(std::string("loudness-scan-") + songs[i].family,
                            bench::median(familyRatios[i]), "x");
    bench::printInfoRow("loudness-scan-ours-cpu", bench::median(ourTotals) * 1000.0, "ms");
    bench::printInfoRow("loudness-scan-ffmpeg-cpu", bench::median(theirTotals) * 1000.0, "ms");
    bench::printInfoRow("loudness-scan-ffmpeg-start", bench::median(starts) * 1000.0, "ms");
    bench::printInfoRow("loudness-scan-songs-per-cpu-second",
                        double(songs.size()) / bench::median(ourTotals), "songs/s");
    return bench::printRow("loudness-scan", bench::median(ratios), "x", 1.2) ? 0 : 1;
}

// The reference's side of a MIDI song: fluidsynth's render and the command's measurement less
// its start-up. cpu below 0 on failure.
Measured measureMidiWithCommands(const std::string& font, const std::string& song,
                                 const fs::path& folder) {
    const std::string wav = (folder / "fluidsynth-out.wav").string();
    const std::string log = (folder / "ffmpeg.log").string();
    double render = renderWithFluidsynth(font, song, wav);
    Measured start = measureWithFfmpeg(wav, false, log, true);
    Measured measured = measureWithFfmpeg(wav, false, log, false);
    if (render <= 0.0 || start.cpu <= 0.0 || measured.cpu <= start.cpu)
        return {};
    measured.cpu = render + measured.cpu - start.cpu;
    return measured;
}

int midiFigure(const fs::path& folder) {
    std::string song = (folder / "dense-gm-30s-then-quiet.mid").string();
    media::MidiSong dense = media::denseGeneralMidiSong(midiSeconds);
    dense.end = midiSeconds + quietSeconds;
    std::error_code error;
    if (!fs::exists(song, error) && !media::writeMidi(song, dense)) {
        std::fprintf(stderr, "cannot write %s\n", song.c_str());
        return 1;
    }
    std::string font = fs::exists(bigFont, error) ? bigFont : smallFont;
    std::fprintf(stderr, "loudness-scan-midi: %s through %s\n", song.c_str(), font.c_str());
    {
        LoudnessMeter meter;
        Measured mine = measureOurs(meter, song, false, font);
        Measured theirs = measureMidiWithCommands(font, song, folder);
        if (mine.cpu < 0.0 || theirs.cpu < 0.0 || !agree("midi", mine, theirs))
            return 1;
    }
    std::vector<double> ours, theirs, ratios;
    for (int round = 0; round < rounds; ++round) {
        LoudnessMeter meter; // parses the font anew, as the command does
        double mine = measureOurs(meter, song, false, font).cpu;
        double reference = measureMidiWithCommands(font, song, folder).cpu;
        if (mine <= 0.0 || reference <= 0.0)
            return 1;
        ours.push_back(mine);
        theirs.push_back(reference);
        ratios.push_back(mine / reference);
    }
    bench::printInfoRow("loudness-scan-midi-ours-cpu", bench::median(ours) * 1000.0, "ms");
    bench::printInfoRow("loudness-scan-midi-commands-cpu", bench::median(theirs) * 1000.0, "ms");
    return bench::printRow("loudness-scan-midi", bench::median(ratios), "x", 1.2) ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    fs::path folder = argc > 1 ? argv[1] : "bench/work/loudness-scan";
    std::error_code error;
    fs::create_directories(folder, error);
    if (folder.filename() == "loudness-scan-midi")
        return midiFigure(folder);
    return scanFigure(folder);
}
