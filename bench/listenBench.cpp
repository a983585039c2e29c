// listen-cpu-*: the CPU time (user + system, every thread) the player itself costs while it plays
// one song in real time, headless (Qt's offscreen platform, SDL's dummy audio driver, which keeps
// real time), against a plain player of the same file: mpv on its null output for the MP3 and
// the module, the fluidsynth command on its SDL2 driver (SDL's dummy again) with the same font for
// the MIDI song. Each side is measured over 30 s that start 3 s after its music starts (for the
// player: 3 s after it logs its first fade-in), the two sides alternating, three times; the
// figure is the median ratio, at most 1.2 ×. listen-cpu-idle is the player with nothing to play,
// at most 0.1 s of CPU a minute. argv[1] ends in the figure's name, which picks the figure.
//
// The songs are 150 s long, so that the window meets no change of song: the player plays a
// random stretch of 45 to 110 s and the window ends 41 s into it at the latest, fade-in included.
// What each thread of the player used in each window goes to the error stream, for whoever
// looks into a miss.
//
// listen-rss-mp3-fluidr3 and listen-rss-midi-fluidr3: the player's resident memory 60 s after its
// music starts, FluidR3_GM (140 MB) in its soundfont folder, playing the MP3 or a General MIDI
// song through that font; the median of three runs, at most 100 and 150 MiB. The reference
// tool's memory on the same song, measured once between them, is shown beside.
#include "benchProcess.h"
#include "benchSongs.h"
#include "benchSupport.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>

namespace {

namespace fs = std::filesystem;

constexpr const char* generalMidiFont = "/usr/share/sounds/sf2/FluidR3_GM.sf2";
constexpr double songSeconds = 150.0;
constexpr double settleSeconds = 3.0;
constexpr double windowSeconds = 30.0;
constexpr int rounds = 3;
constexpr double rssSeconds = 60.0;

enum class Measure { Cpu, Rss };

struct Figure {
    const char* name;
    Measure measure;
    std::optional<bench::SongKind> kind; // nothing: the idle player
    const char* musicFolder;             // under GAME/HarpTone
    const char* reference;               // the command it is held against
};
constexpr Figure figures[] = {
    {"listen-cpu-mp3", Measure::Cpu, bench::SongKind::Mp3, "Mp3 Songs", "mpv"},
    {"listen-cpu-midi", Measure::Cpu, bench::SongKind::Midi, "MIDI Songs", "fluidsynth"},
    {"listen-cpu-module", Measure::Cpu, bench::SongKind::Module, "Tracker Songs", "mpv"},
    {"listen-cpu-idle", Measure::Cpu, std::nullopt, "", ""},
    {"listen-rss-mp3-fluidr3", Measure::Rss, bench::SongKind::Mp3, "Mp3 Songs", "mpv"},
    {"listen-rss-midi-fluidr3", Measure::Rss, bench::SongKind::Midi, "MIDI Songs", "fluidsynth"},
};

void sleepSeconds(double seconds) {
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

// A game folder as the player's first start expects it: the one song in an album folder of its
// family, the font in the soundfont folder, and a data folder without any file of an earlier run.
fs::path layOutGame(const fs::path& folder, const Figure& figure, const std::string& song) {
    fs::path game = folder / "game";
    std::error_code error;
    fs::remove_all(game, error);
    for (const char* family : {"MIDI Songs", "Mp3 Songs", "Tracker Songs", "SoundFonts"})
        fs::create_directories(game / "HarpTone" / family, error);
    fs::create_directories(game / "data", error);
    fs::create_symlink(generalMidiFont, game / "HarpTone/SoundFonts/FluidR3_GM.sf2", error);
    if (!song.empty()) {
        fs::path album = game / "HarpTone" / figure.musicFolder / "Album";
        fs::create_directories(album, error);
        fs::create_symlink(fs::absolute(song), album / fs::path(song).filename(), error);
    }
    return game / "data";
}

bool logHolds(const std::string& path, const std::string& text) {
    std::ifstream in(path);
    std::string line;
    while (std::getline(in, line))
        if (line.find(text) != std::string::npos)
            return true;
    return false;
}

// Waits up to 60 s for the line that says the program's music started; false when it did not
// come or the program died.
bool waitForMusic(bench::RunningProgram& program, const bench::Launch& launch,
                  const std::string& readyLine, const std::string& label) {
    if (program.pid() == 0)
        return false;
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!readyLine.empty() && !logHolds(launch.outputPath, readyLine)) {
        if (!program.alive() || std::chrono::steady_clock::now() > deadline) {
            std::fprintf(stderr, "%s: no \"%s\" in %s\n", label.c_str(), readyLine.c_str(),
                         launch.outputPath.c_str());
            return false;
        }
        sleepSeconds(0.05);
    }
    return true;
}

// The resident memory of the process in MiB, -1 when it cannot be read.
double residentMiB(pid_t pid) {
    std::ifstream in("/proc/" + std::to_string(pid) + "/status");
    std::string line;
    while (std::getline(in, line))
        if (line.rfind("VmRSS:", 0) == 0)
            return std::stod(line.substr(6)) / 1024.0;
    return -1.0;
}

// Lets the program's music play for rssSeconds, then reads its resident memory; -1 when it did
// not start or died.
double rssAfterListening(const bench::Launch& launch, const std::string& readyLine,
                         const std::string& label) {
    bench::RunningProgram program(launch);
    if (!waitForMusic(program, launch, readyLine, label))
        return -1.0;
    sleepSeconds(rssSeconds);
    double mib = program.alive() ? residentMiB(program.pid()) : -1.0;
    program.stop();
    if (mib < 0.0)
        std::fprintf(stderr, "%s: ended before its %g s\n", label.c_str(), rssSeconds);
    return mib;
}

// Waits for the program's music to start, settles, then measures it: CPU seconds per minute,
// or -1 when it did not start or died. Its threads' share goes to the error stream.
double cpuPerMinute(const bench::Launch& launch, const std::string& readyLine,
                    const std::string& label) {
    bench::RunningProgram program(launch);
    if (!waitForMusic(program, launch, readyLine, label))
        return -1.0;
    sleepSeconds(settleSeconds);
    auto threadsBefore = bench::threadCpuSeconds(program.pid());
    double before = bench::processCpuSeconds(program.pid());
    sleepSeconds(windowSeconds);
    double after = bench::processCpuSeconds(program.pid());
    auto threadsAfter = bench::threadCpuSeconds(program.pid());
    bool lived = program.alive() && before >= 0.0 && after >= 0.0;
    int status = program.stop();
    if (!lived) {
        std::fprintf(stderr, "%s: ended before its window did\n", label.c_str());
        return -1.0;
    }
    if (launch.args[0].find("marble") != std::string::npos &&
        !(WIFEXITED(status) && WEXITSTATUS(status) == 0))
        std::fprintf(stderr, "%s: did not exit with 0 on SIGTERM (status %d)\n", label.c_str(),
                     status);
    std::string line = label + " threads, CPU s/min:";
    for (const auto& [tid, time] : threadsAfter) {
        auto was = threadsBefore.find(tid);
        double used = time.seconds - (was == threadsBefore.end() ? 0.0 : was->second.seconds);
        char share[64];
        std::snprintf(share, sizeof share, "=%.2f", used * 60.0 / windowSeconds);
        if (used > 0.0)
            line += " " + time.name + "(" + std::to_string(tid) + ")" + share;
    }
    std::fprintf(stderr, "%s\n", line.c_str());
    return (after - before) * 60.0 / windowSeconds;
}

bench::Launch playerLaunch(const fs::path& player, const fs::path& data, const fs::path& log) {
    return {{player.string()},
            data.string(),
            log.string(),
            {"QT_QPA_PLATFORM=offscreen", "SDL_AUDIODRIVER=dummy"}};
}

bench::Launch referenceLaunch(const Figure& figure, const std::string& song, const fs::path& log) {
    if (std::string(figure.reference) == "fluidsynth")
        return {{"fluidsynth", "-ni", "-q", "-a", "sdl2", "-r", "44100", generalMidiFont, song},
                "",
                log.string(),
                {"SDL_AUDIODRIVER=dummy"}};
    // The module demuxer renders at 48000 Hz unless told otherwise; the player mixes at 44100.
    return {{"mpv", "--no-config", "--no-video", "--no-terminal", "--ao=null",
             "--demuxer-lavf-o=sample_rate=44100", song},
            "",
            log.string(),
            {}};
}

// Both sides in turn; false when a run failed.
bool measure(const Figure& figure, const fs::path& folder, const fs::path& player,
             std::vector<double>& ours, std::vector<double>& theirs) {
    std::string song;
    if (figure.kind) {
        song = bench::ensureSong(folder, "song", *figure.kind, songSeconds);
        if (song.empty())
            return false;
    }
    fs::path data = layOutGame(folder, figure, song);
    if (figure.measure == Measure::Rss) {
        for (int round = 0; round < rounds; ++round) {
            std::string tag = std::string(figure.name) + " round " + std::to_string(round + 1);
            double mine = rssAfterListening(playerLaunch(player, data, folder / "player.log"),
                                            "Fading in", tag + " player");
            if (mine < 0.0)
                return false;
            ours.push_back(mine);
            if (round == rounds / 2) {
                double command = rssAfterListening(
                    referenceLaunch(figure, song, folder / "reference.log"), "", tag);
                if (command <= 0.0)
                    return false;
                theirs.push_back(command);
            }
        }
        return true;
    }
    // A first start measures its song's loudness (seconds of a core, at idle priority), which a
    // listener pays once per song and not every minute: that start is a warm-up, not a round.
    if (figure.kind && cpuPerMinute(playerLaunch(player, data, folder / "player.log"), "Fading in",
                                    std::string(figure.name) + " warm-up") < 0.0)
        return false;
    for (int round = 0; round < rounds; ++round) {
        std::string tag = std::string(figure.name) + " round " + std::to_string(round + 1);
        double mine = cpuPerMinute(playerLaunch(player, data, folder / "player.log"),
                                   figure.kind ? "Fading in" : "", tag + " player");
        if (mine < 0.0)
            return false;
        ours.push_back(mine);
        if (!figure.kind)
            continue;
        double command = cpuPerMinute(referenceLaunch(figure, song, folder / "reference.log"), "",
                                      tag + " " + figure.reference);
        if (command <= 0.0)
            return false;
        theirs.push_back(command);
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    fs::path folder = argc > 1 ? argv[1] : "bench/work/listen-cpu-idle";
    std::string name = folder.filename().string();
    auto figure = std::find_if(std::begin(figures), std::end(figures),
                               [&](const Figure& f) { return name == f.name; });
    if (figure == std::end(figures)) {
        std::fprintf(stderr, "no figure %s\n", name.c_str());
        return 2;
    }
    // build/bench/listenBench: the player is build/marble-tunnel-radio.
    fs::path player =
        fs::read_symlink("/proc/self/exe").parent_path().parent_path() / "marble-tunnel-radio";
    std::vector<double> ours, theirs;
    if (!measure(*figure, folder, player, ours, theirs))
        return 2;
    if (figure->measure == Measure::Rss) {
        bench::printInfoRow(name + "-" + figure->reference, bench::median(theirs), "MiB");
        double target = figure->kind == bench::SongKind::Mp3 ? 100.0 : 150.0;
        return bench::printRow(name, bench::median(ours), "MiB", target) ? 0 : 1;
    }
    bench::printInfoRow(name + "-player", bench::median(ours), "s/min");
    if (!figure->kind)
        return bench::printRow(name, bench::median(ours), "s/min", 0.1) ? 0 : 1;
    std::vector<double> ratios;
    for (std::size_t i = 0; i < ours.size(); ++i)
        ratios.push_back(ours[i] / theirs[i]);
    bench::printInfoRow(name + "-" + figure->reference, bench::median(theirs), "s/min");
    return bench::printRow(name, bench::median(ratios), "x", 1.2) ? 0 : 1;
}
