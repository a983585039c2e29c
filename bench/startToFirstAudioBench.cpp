// start-to-first-audio-10k: the real player, started as ./run starts it without a display (Qt's
// offscreen platform), from its exec to the first non-zero sample it hands to the audio device,
// with a library of 10,000 songs in its cache; target 250 ms, median of 5. The device is SDL's
// disk driver writing into a FIFO that this program reads, so the moment a sample arrives is the
// moment the player handed it over (the driver's own pace, one buffer of 2048 frames, stays as a
// real device's would). start-to-first-audio-1 is the same player on a library of one song, its
// bare start, run in turn with the first, so that the two rows show what 10,000 songs add.
//
// Every start asks the maker's web site for the newest version, once its first song plays. Here
// that request goes through http_proxy to a loopback server of this program, which answers at
// once with this very version; a start whose request did not arrive there spoils the figure, and
// no start reaches the network. The songs are links to five short files, one of each family
// (MIDI, MP3, FLAC, M4A, module), made once by tools/media and kept; at 30 s a stream is shorter
// than the shortest stretch the radio plays (45 s), so it plays from its first sample instead of
// a random place, where a MIDI song may rest for a beat. The cache and the settings are written
// by the player's own code, then each library is started once unmeasured, and every measured
// start begins from the data folder that first start left.
#include "benchProcess.h"
#include "benchSongs.h"
#include "benchSupport.h"
#include "core/libraryEdits.h"
#include "core/playerState.h"
#include "library/model.h"
#include "library/rebuild.h"
#include "media/icyServer.h"
#include "update/makerSite.h"
#include "update/versionCheck.h"

#include <atomic>
#include <fstream>
#include <optional>
#include <poll.h>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int rounds = 5;
constexpr int albums = 100;
constexpr double songSeconds = 30.0;
constexpr const char* fontPath = "/usr/share/sounds/sf2/TimGM6mb.sf2";
constexpr auto startLimit = std::chrono::seconds(30);

struct Library {
    const char* name;
    int songs;
    fs::path data;                  // the player's data folder, GAME/data
    std::vector<std::string> links; // the made files its songs link to, in turn
};

// The five made files, one of each family the scan sorts into MIDI, stream and tracker songs.
std::vector<std::string> makeSongs(const fs::path& folder) {
    using bench::SongKind;
    std::vector<std::string> songs;
    for (SongKind kind :
         {SongKind::Midi, SongKind::Mp3, SongKind::Flac, SongKind::M4a, SongKind::Module}) {
        std::string song = bench::ensureSong(folder, "song", kind, songSeconds);
        if (song.empty())
            return {};
        songs.push_back(fs::absolute(song).string());
    }
    return songs;
}

// GAME/Music/Album NNN/NNN - Title NNNNN.ext, each a link to one of the made files in turn; the
// font in GAME/HarpTone/SoundFonts; the cache and settings as a scan of GAME/Music leaves them.
bool layOutGame(const fs::path& game, int songCount, const std::vector<std::string>& songs) {
    std::error_code error;
    fs::remove_all(game, error);
    fs::create_directories(game / "HarpTone/SoundFonts", error);
    fs::create_directories(game / "data", error);
    fs::create_symlink(fontPath, game / "HarpTone/SoundFonts/TimGM6mb.sf2", error);
    const int perAlbum = std::max(1, songCount / albums);
    for (int i = 0; i < songCount && !error; ++i) {
        fs::path album = game / "Music" / ("Album " + std::to_string(i / perAlbum));
        if (i % perAlbum == 0)
            fs::create_directories(album, error);
        const std::string& target = songs[static_cast<std::size_t>(i) % songs.size()];
        std::string name = std::to_string(i % perAlbum + 1) + " - A Song Title " +
                           std::to_string(i) + fs::path(target).extension().string();
        fs::create_symlink(target, album / name, error);
    }
    if (error) {
        std::fprintf(stderr, "cannot lay out %s: %s\n", game.c_str(), error.message().c_str());
        return false;
    }
    PlayerState st;
    st.dataDirectory = (game / "data").string();
    st.libraryCachePath = st.dataDirectory + "/musicLibraryCache.json";
    st.directoryPaths = {(game / "Music").string()};
    scanAllRoots(st);
    recountLibrary(st);
    saveLibraryCache(st); // the settings go with it
    return st.totalSongCount == songCount;
}

// The FIFO the disk driver writes into, opened for reading before the player starts, so that
// the driver's open does not wait; a writer of ours keeps a read from ever seeing its end.
class DeviceFifo {
  public:
    explicit DeviceFifo(const fs::path& path) {
        reader_ = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        if (reader_ >= 0)
            writer_ = open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    }
    ~DeviceFifo() {
        if (writer_ >= 0)
            close(writer_);
        if (reader_ >= 0)
            close(reader_);
    }
    DeviceFifo(const DeviceFifo&) = delete;
    DeviceFifo& operator=(const DeviceFifo&) = delete;

    bool opened() const { return writer_ >= 0; }
    // What arrived within timeoutMs: nothing (size 0) when nothing did.
    std::size_t read(char* buffer, std::size_t size, int timeoutMs) {
        pollfd ready{reader_, POLLIN, 0};
        if (poll(&ready, 1, timeoutMs) <= 0)
            return 0;
        ssize_t got = ::read(reader_, buffer, size);
        return got > 0 ? static_cast<std::size_t>(got) : 0;
    }

  private:
    int reader_ = -1;
    int writer_ = -1;
};

// The first song the player's log names, for whoever looks into a slow start.
std::string drawnSong(const std::string& logPath) {
    std::ifstream log(logPath);
    std::string line;
    while (std::getline(log, line))
        if (line.rfind("Drawn song: ", 0) == 0)
            return fs::path(line).filename().string();
    return "no song drawn";
}

bool holdsSound(const char* bytes, std::size_t size) {
    return std::any_of(bytes, bytes + size, [](char b) { return b != 0; });
}

// Stops the player with SIGTERM, as a session end would, while the device is still read: its
// audio thread must not stay blocked on a full FIFO while the player closes the device.
int stopDraining(bench::RunningProgram& program, DeviceFifo& fifo) {
    std::atomic<bool> stopped{false};
    std::thread drain([&] {
        std::vector<char> buffer(1 << 16);
        while (!stopped)
            fifo.read(buffer.data(), buffer.size(), 50);
    });
    int status = program.stop();
    stopped = true;
    drain.join();
    return status;
}

// Seconds from the exec to the first non-zero byte on the device; nothing when none came.
std::optional<double> timeToFirstAudio(const fs::path& player, const Library& library,
                                       const fs::path& fifoPath, const std::string& proxy) {
    DeviceFifo fifo(fifoPath);
    if (!fifo.opened()) {
        std::fprintf(stderr, "cannot open %s: %s\n", fifoPath.c_str(), std::strerror(errno));
        return std::nullopt;
    }
    bench::Launch launch{
        {player.string()},
        library.data.string(),
        (library.data.parent_path().parent_path() / (std::string(library.name) + ".log")).string(),
        {"QT_QPA_PLATFORM=offscreen", "SDL_AUDIODRIVER=disk",
         "SDL_DISKAUDIOFILE=" + fifoPath.string(), "http_proxy=" + proxy,
         "no_proxy=", "NO_PROXY="}};
    const Clock::time_point start = Clock::now();
    bench::RunningProgram program(launch);
    std::optional<double> seconds;
    std::vector<char> buffer(1 << 16);
    while (!seconds && program.alive() && Clock::now() - start < startLimit) {
        std::size_t got = fifo.read(buffer.data(), buffer.size(), 100);
        if (holdsSound(buffer.data(), got))
            seconds = std::chrono::duration<double>(Clock::now() - start).count();
    }
    int status = stopDraining(program, fifo);
    if (!seconds)
        std::fprintf(stderr, "%s: no sound on the device; see %s\n", library.name,
                     launch.outputPath.c_str());
    else
        std::fprintf(stderr, "%s: %.0f ms, %s\n", library.name, *seconds * 1000.0,
                     drawnSong(launch.outputPath).c_str());
    if (!(WIFEXITED(status) && WEXITSTATUS(status) == 0))
        std::fprintf(stderr, "%s: the player did not exit with 0 on SIGTERM (status %d)\n",
                     library.name, status);
    return seconds;
}

// The data folder as the unmeasured first start left it, put back before every measured start.
bool restoreData(const Library& library) {
    const fs::path saved = library.data.parent_path() / "data.start";
    std::error_code error;
    fs::remove_all(library.data, error);
    fs::copy(saved, library.data, fs::copy_options::recursive, error);
    if (error)
        std::fprintf(stderr, "cannot restore %s: %s\n", library.data.c_str(),
                     error.message().c_str());
    return !error;
}

bool saveData(const Library& library) {
    const fs::path saved = library.data.parent_path() / "data.start";
    std::error_code error;
    fs::remove_all(saved, error);
    fs::copy(library.data, saved, fs::copy_options::recursive, error);
    return !error;
}

} // namespace

int main(int argc, char** argv) {
    const fs::path folder = fs::absolute(argc > 1 ? argv[1] : "bench/work/start-to-first-audio");
    // build/bench/startToFirstAudioBench: the player is build/marble-tunnel-radio.
    const fs::path player =
        fs::read_symlink("/proc/self/exe").parent_path().parent_path() / "marble-tunnel-radio";
    const std::vector<std::string> songs = makeSongs(folder / "songs");
    if (songs.empty())
        return 2;
    const fs::path fifo = folder / "device.fifo";
    std::error_code error;
    fs::remove(fifo, error);
    if (mkfifo(fifo.c_str(), 0600) != 0) {
        std::fprintf(stderr, "cannot make %s: %s\n", fifo.c_str(), std::strerror(errno));
        return 2;
    }
    IcyServer site({{makerAddress() + "/Downloads/version.txt", webPage(programVersion)}});
    const std::string proxy = site.url("");

    // The one song is the MP3, the family most of a library is made of.
    Library libraries[] = {{"start-to-first-audio-10k", 10000, folder / "game10k/data", songs},
                           {"start-to-first-audio-1", 1, folder / "game1/data", {songs[1]}}};
    for (const Library& library : libraries)
        if (!layOutGame(library.data.parent_path(), library.songs, library.links) ||
            !timeToFirstAudio(player, library, fifo, proxy) || !saveData(library))
            return 2;
    std::vector<double> times[2];
    for (int round = 0; round < rounds; ++round)
        for (int which = 0; which < 2; ++which) {
            const std::size_t asked = site.requests().size();
            if (!restoreData(libraries[which]))
                return 2;
            std::optional<double> seconds = timeToFirstAudio(player, libraries[which], fifo, proxy);
            if (!seconds)
                return 2;
            if (site.requests().size() != asked + 1) {
                std::fprintf(stderr, "%s: the version request did not come to the bench's server\n",
                             libraries[which].name);
                return 2;
            }
            times[which].push_back(*seconds * 1000.0);
        }
    bench::printInfoRow(libraries[1].name, bench::median(times[1]), "ms");
    return bench::printRow(libraries[0].name, bench::median(times[0]), "ms", 250.0) ? 0 : 1;
}
