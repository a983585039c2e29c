// soak-rss-5000: the player's logic left to run through thousands of changes of song, and how much
// its resident memory grows between the 500th and the 5,000th (in %, at most 5). The real logic
// on a PlayerState with the engine on the null output, pulled as a device would pull it, so the
// decoders really run; real files of every family and TimGM6mb (FluidR3's synth set-up would
// dominate each MIDI song). Time passes in repaint ticks of 250 ms, each followed by the game
// link's poll; the radio changes song at its segments' ends, and between ticks operations drawn
// from a seeded generator run through the window's own entry points: the menu's commands, the
// seek bar, the volume bar and toggle, the media controls and lines of the game's command file.
// After every tick and every operation the audible channel must still play: the soak stops with
// one line when it does not. Short songs and fades of 0 to 500 ms keep simulated time short.
//
// soakBench [FOLDER] [--transitions N] [--seed N]: N (5,000 by default) changes of song, memory
// compared with that after N/10; the seed (drawn when not given) goes to the error stream.
#include "benchSongs.h"
#include "benchSupport.h"
#include "core/commands.h"
#include "core/hostPort.h"
#include "core/mediaControls.h"
#include "core/playerState.h"
#include "core/transport.h"
#include "core/volume.h"
#include "core/windowEvents.h"
#include "library/model.h"
#include "media/soundFontWriter.h"
#include "playback/engine/engine.h"
#include "playback/fadeWorker.h"
#include "playback/slots.h"
#include "support/manualClock.h"

#include <charconv>
#include <cstdio>
#include <fstream>
#include <malloc.h>
#include <optional>
#include <random>
#include <set>

namespace {

namespace fs = std::filesystem;

constexpr const char* timidityFont = "/usr/share/sounds/sf2/TimGM6mb.sf2";
// Streams under 30 s play whole but their last 2 s, and the end test wants more than 5 s heard;
// the module's segments of 4 to 6 s all end before its 15 s do.
constexpr double streamSeconds = 8.0;
constexpr double moduleSeconds = 15.0;
constexpr int tickMs = 250; // the repaint timer's period
constexpr int maxFadeMs = 500;

struct Options {
    fs::path folder = "bench/work/soak-rss-5000";
    int transitions = 5000;
    std::uint32_t seed = std::random_device{}();
};

std::optional<Options> parseOptions(int argc, char** argv) {
    Options options;
    auto number = [](const char* text, auto& out) {
        const char* end = text + std::strlen(text);
        auto [at, error] = std::from_chars(text, end, out);
        return error == std::errc() && at == end;
    };
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        bool valued = arg == "--transitions" || arg == "--seed";
        if (valued && i + 1 >= argc)
            return std::nullopt;
        if (arg == "--transitions" &&
            (!number(argv[++i], options.transitions) || options.transitions < 10))
            return std::nullopt;
        else if (arg == "--seed" && !number(argv[++i], options.seed))
            return std::nullopt;
        else if (!valued)
            options.folder = arg;
    }
    return options;
}

// The window system as the soak sees it: no window, each change of song counted, each message
// box a line on the error stream (none is expected).
class SoakPort : public host::Port {
  public:
    SoakPort() { previous_ = host::installPort(this); }
    ~SoakPort() override { host::installPort(previous_); }
    SoakPort(const SoakPort&) = delete;
    SoakPort& operator=(const SoakPort&) = delete;

    void setTimer(int, int) override {}
    void killTimer(int) override {}
    void invalidate(const host::Rect*, bool) override {}
    void messageBox(const std::string& text, const std::string& title, host::Icon, bool) override {
        std::fprintf(stderr, "soak: message box \"%s\": %s\n", title.c_str(), text.c_str());
        ++boxes;
    }
    void playerChanged(host::PlayerChange what) override {
        if (what == host::PlayerChange::Song)
            ++songChanges;
    }
    void closeMainWindow() override {}
    void openDialog(int) override {}
    bool keyIsDown(int) override { return false; }
    void registerHotkey(int, int, std::uint32_t) override {}
    void unregisterHotkey(int) override {}
    std::optional<std::string> pickFolder(const std::string&) override { return std::nullopt; }
    void openUrl(const std::string&) override {}
    bool isBorderless() override { return false; }
    void setBorderless(bool) override {}
    void setOpacity(int) override {}

    int songChanges = 0;
    int boxes = 0;

  private:
    host::Port* previous_ = nullptr;
};

// What malloc holds for the program and what it has taken from the system, in KiB, for whoever
// looks into a growth: the first without the second is fragmentation, not a leak.
std::string heapKiB() {
    struct mallinfo2 info = mallinfo2();
    return std::to_string(info.uordblks / 1024) + " KiB of heap in use of " +
           std::to_string((info.arena + info.hblkhd) / 1024);
}

// The resident memory of this process in KiB, -1 when it cannot be read.
long residentKiB() {
    std::ifstream in("/proc/self/status");
    std::string line;
    while (std::getline(in, line))
        if (line.rfind("VmRSS:", 0) == 0)
            return std::stol(line.substr(6));
    return -1;
}

// Two songs of each family, a playlist per family; two fonts (TimGM6mb and a small one of
// tools/media) in the soundfont folder; an empty game folder for the command file.
bool makeLibrary(PlayerState& st, const fs::path& folder) {
    constexpr std::pair<const char*, bench::SongKind> families[] = {
        {"midi", bench::SongKind::Midi},
        {"mp3", bench::SongKind::Mp3},
        {"flac", bench::SongKind::Flac},
        {"m4a", bench::SongKind::M4a},
        {"module", bench::SongKind::Module}};
    for (const auto& [name, kind] : families) {
        Playlist playlist{name, {}, 2, 0, 0, 0};
        for (const char* stem : {"a", "b"}) {
            double seconds = kind == bench::SongKind::Module ? moduleSeconds : streamSeconds;
            std::string path =
                bench::ensureSong(folder / "songs", std::string(name) + "-" + stem, kind, seconds);
            if (path.empty())
                return false;
            playlist.songs.push_back(
                Song{path, 0, 0, 0, classifyExtension(bench::extensionOf(kind))});
        }
        st.playlists.push_back(playlist);
    }
    recountLibrary(st);
    st.scanSongCount = st.totalSongCount;
    st.scanPlaylistCount = static_cast<int>(st.playlists.size());

    std::error_code error;
    fs::path fonts = folder / "fonts";
    fs::create_directories(fonts, error);
    fs::create_directories(folder / "game", error);
    if (!fs::exists(fonts / "TimGM6mb.sf2", error))
        fs::create_symlink(timidityFont, fonts / "TimGM6mb.sf2", error);
    if (!fs::exists(fonts / "small.sf2", error) &&
        !media::writeSoundFont((fonts / "small.sf2").string(), {128, 22050, 440.0}))
        return false;
    st.soundFontDirectoryPath = fonts.string();
    st.marbleTunnelPath = (folder / "game").string();
    return fs::exists(timidityFont, error);
}

class Soak {
  public:
    Soak(PlayerState& st, std::uint32_t seed) : st_(st), rng_(seed) {
        st_.fadeClock = &clock_;
        st_.audioOutput = AudioOutput::Null;
        st_.familyRng.seed(seed);
        st_.selectionRng.seed(seed + 1);
        st_.rand15.seed(seed + 2);
        st_.soundFontSeed = seed | 1;
        st_.FADE_DURATION_MS = maxFadeMs;
        st_.songPlayDurationMin = 4;
        st_.songPlayDurationMax = 6;
    }

    // Runs until `transitions` changes of song, looking at the memory once the count reaches
    // `checkpoint`; false after a line on the error stream when the audible channel stopped or
    // a message box came.
    bool run(int transitions, int checkpoint);
    // The resident memory in KiB with the audio stopped by the menu, the same state at every
    // look: what plays at the moment (a parsed font, a module) would swing it by several MiB.
    long residentWhenStopped();

    long residentAtCheckpoint = -1;

    int radioChanges = 0; // the changes of song that the repaint tick made
    int operations = 0;

  private:
    int draw(int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng_); }
    void tick();
    void operate(int which);
    void pauseOrResume();
    void stopThenStart();
    std::string gameLine();
    // Empty while the audible channel plays, or is paused by the soak, or ended by itself (a
    // module at its end, which the next tick moves on from); else what is wrong.
    std::string audibleFault() const;

    PlayerState& st_;
    ManualClock clock_;
    SoakPort port_;
    std::mt19937 rng_;
    std::set<ChannelHandle> pausedBySoak_;
    static constexpr const char* operationNames[] = {
        "next song",     "previous song",  "playlist step", "pause", "volume set",
        "volume toggle", "soundfont step", "Stop, Start",   "seek",  "seek",
        "game line",     "game line",      "game line"};
    static constexpr int operationCount = static_cast<int>(std::size(operationNames));
};

void Soak::tick() {
    nullOutputPull(static_cast<std::size_t>(tickMs) * 441 / 10);
    clock_.advance(tickMs);
    settleFadeWorkers(st_);
    int before = port_.songChanges;
    st_.paintedSinceTick = false; // no window paints, so the tick runs the end test
    onTimer(st_, host::timerRepaint);
    radioChanges += port_.songChanges - before;
    onTimer(st_, host::timerPoll);
}

// A line the game could write, each word of the file with a value in the range the game uses;
// the family ratios stay above 0, where a draw would find no family and stop the music.
std::string Soak::gameLine() {
    const double length =
        std::max(0.0, channelBytesToSeconds(st_.activeHandle, channelGetLength(st_.activeHandle)));
    switch (draw(0, 12)) {
    case 0:
        return "NEXT_SONG";
    case 1:
        return "PREVIOUS_SONG";
    case 2:
        return "NEXT_PLAYLIST";
    case 3:
        return "NEXT_SOUNDFONT";
    case 4:
        return "SHUFFLE";
    case 5:
        return "favoritesOnly";
    case 6:
        return "POS " + std::to_string(length * draw(0, 100) / 100.0);
    case 7:
        return "VOL " + std::to_string(draw(0, 100) / 100.0);
    case 8:
        return "FADE_DURATION_MS " + std::to_string(draw(0, maxFadeMs));
    case 9:
        return "PLAY_SONG " + std::to_string(draw(0, 4)) + " " + std::to_string(draw(0, 1));
    case 10:
        return "favoriteCount " + std::to_string(draw(0, 3));
    case 11: {
        const char* words[] = {"rawMidi", "rawTracker", "rawMP3", "rawFav"};
        return std::string(words[draw(0, 3)]) + " " + std::to_string(draw(1, 100));
    }
    default:
        return "NOT_A_COMMAND 1";
    }
}

void Soak::pauseOrResume() {
    runCommand(st_, command::playPause);
    for (ChannelHandle handle : familyChannels(st_)) {
        if (channelIsActive(handle) == ChannelState::Paused)
            pausedBySoak_.insert(handle);
        else
            pausedBySoak_.erase(handle);
    }
}

// Stop, a few ticks with the audio off, then Start: a new song on a new set-up.
void Soak::stopThenStart() {
    runCommand(st_, command::stop);
    pausedBySoak_.clear();
    for (int i = draw(0, 3); i > 0; --i)
        tick();
    runCommand(st_, command::start);
}

void Soak::operate(int which) {
    st_.FADE_DURATION_MS = draw(0, maxFadeMs);
    switch (which) {
    case 0:
        runCommand(st_, command::nextSong);
        break;
    case 1:
        runCommand(st_, command::previousSong);
        break;
    case 2:
        runCommand(st_, draw(0, 1) ? command::nextPlaylist : command::previousPlaylist);
        break;
    case 3:
        pauseOrResume();
        break;
    case 4:
        mediaSetVolume(st_, draw(0, 100) / 100.0);
        break;
    case 5:
        toggleVolumeLevel(st_);
        break;
    case 6:
        runCommand(st_, draw(0, 1) ? command::nextSoundFont : command::previousSoundFont);
        break;
    case 7:
        stopThenStart();
        break;
    case 8:
    case 9: { // the seek bar, anywhere in the song
        std::optional<std::int64_t> length = mediaSnapshot(st_).lengthUs;
        if (length)
            mediaSeek(st_, *length * draw(0, 1000) / 1000);
        break;
    }
    default: { // the game's command file, read by the next poll
        std::ofstream(st_.marbleTunnelPath + "/commands.txt", std::ios::app) << gameLine() << "\n";
        onTimer(st_, host::timerPoll);
        break;
    }
    }
    ++operations;
}

std::string Soak::audibleFault() const {
    if (!engineIsInitialized() || st_.onStation) // stopped by the soak, or no station to play
        return {};
    ChannelHandle audible = audibleHandle(st_);
    ChannelState state = channelIsActive(audible);
    if (pausedBySoak_.count(audible))
        return state == ChannelState::Paused ? std::string() : "is not paused as the soak left it";
    if (state == ChannelState::Playing)
        return {};
    std::uint64_t length = channelGetLength(audible);
    if (state == ChannelState::Stopped && length != noPosition &&
        channelGetPosition(audible) >= length)
        return {};
    static const char* names[] = {"stopped", "playing", "stalled", "paused"};
    return std::string(audible == 0 ? "is missing" : "is ") +
           (audible == 0 ? "" : names[static_cast<int>(state)]);
}

long Soak::residentWhenStopped() {
    runCommand(st_, command::stop);
    pausedBySoak_.clear();
    clock_.advance(maxFadeMs);
    settleFadeWorkers(st_);
    long kib = residentKiB();
    std::fprintf(stderr, "soak: %ld KiB resident after %d changes of song, %s\n", kib,
                 port_.songChanges, heapKiB().c_str());
    return kib;
}

bool Soak::run(int transitions, int checkpoint) {
    runCommand(st_, command::start);
    for (int step = 0; port_.songChanges < transitions; ++step) {
        int operation = -1;
        // The radio does not move on while the soak holds the song paused or the walk stands
        // on a station (the library has none): the next operation comes sooner then.
        const bool silent = st_.onStation || pausedBySoak_.count(audibleHandle(st_)) != 0;
        if (draw(0, silent ? 3 : 39) == 0) {
            operation = draw(0, operationCount - 1);
            operate(operation);
        } else {
            tick();
        }
        if (std::string fault = audibleFault(); !fault.empty()) {
            std::fprintf(stderr,
                         "soak: the audible channel %s after step %d (%s), change of song %d\n",
                         fault.c_str(), step, operation < 0 ? "a tick" : operationNames[operation],
                         port_.songChanges);
            return false;
        }
        if (residentAtCheckpoint < 0 && port_.songChanges >= checkpoint) {
            residentAtCheckpoint = residentWhenStopped();
            runCommand(st_, command::start);
        }
    }
    return port_.boxes == 0;
}

} // namespace

int main(int argc, char** argv) {
    std::optional<Options> options = parseOptions(argc, argv);
    if (!options) {
        std::fprintf(stderr, "usage: soakBench [FOLDER] [--transitions N>=10] [--seed N]\n");
        return 2;
    }
    std::fprintf(stderr, "soak: seed %u, %d changes of song\n", options->seed,
                 options->transitions);
    PlayerState st;
    if (!makeLibrary(st, options->folder))
        return 2;
    long early = -1, late = -1;
    bool held = false;
    {
        Soak soak(st, options->seed);
        bench::OutputToFile log((options->folder / "player.log").string());
        double seconds = bench::secondsOf(
            [&] { held = soak.run(options->transitions, options->transitions / 10); });
        early = soak.residentAtCheckpoint;
        late = soak.residentWhenStopped();
        endFadeWorkers(st);
        std::fprintf(stderr, "soak: %d changes of song by the radio, %d operations, %.0f s\n",
                     soak.radioChanges, soak.operations, seconds);
    }
    pluginFreeAll();
    if (!held || early <= 0 || late <= 0)
        return 2;
    double growth = 100.0 * static_cast<double>(late - early) / static_cast<double>(early);
    std::string name = "soak-rss-" + std::to_string(options->transitions);
    return bench::printRow(name, growth, "%", 5.0) ? 0 : 1;
}
