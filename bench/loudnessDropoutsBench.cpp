// loudness-dropouts: underruns on the real output while the measuring thread (the player's own,
// at idle priority) scans a library of dense MIDI songs through FluidR3 and modules for 30 s, and
// the radio crossfades a song of each family into the next every ten seconds, each levelled by a
// gain that is set before it is heard and moved while it plays. SDL's dummy driver takes the
// blocks in real time, as a device would; the whole program runs on two cores, so the measuring
// thread competes with the decoders and the mixer rather than taking a core of its own. Target 0.
#include "benchProcess.h"
#include "benchSongs.h"
#include "benchSupport.h"
#include "media/midiWriter.h"
#include "media/moduleWriter.h"
#include "playback/audioSetup.h"
#include "playback/engine/engine.h"
#include "playback/loudnessWorker.h"
#include "playback/playbackState.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sched.h>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int scanSeconds = 30;
constexpr int fadeEverySeconds = 10;
constexpr int fadeMs = 8000;
// More than the thread can measure in 30 s: it must be busy to the end.
constexpr int librarySongsPerFamily = 20;
constexpr double librarySongSeconds = 30.0;
constexpr const char* fluidR3 = "/usr/share/sounds/sf2/FluidR3_GM.sf2";

bool pinToTwoCores() {
    cpu_set_t cores;
    CPU_ZERO(&cores);
    CPU_SET(0, &cores);
    CPU_SET(1, &cores);
    if (sched_setaffinity(0, sizeof cores, &cores) == 0)
        return true;
    std::perror("loudness-dropouts: sched_setaffinity");
    return false;
}

// Dense MIDI songs and modules, alternating, each of its own notes; written once.
std::vector<Song> makeLibrary(const fs::path& folder) {
    std::vector<Song> songs;
    for (int i = 0; i < librarySongsPerFamily; ++i) {
        std::string midi = (folder / ("dense-" + std::to_string(i) + ".mid")).string();
        std::string module = (folder / ("tracker-" + std::to_string(i) + ".mod")).string();
        std::error_code error;
        auto seed = static_cast<std::uint32_t>(i + 1);
        if (!fs::exists(midi, error) &&
            !media::writeMidi(midi, media::denseGeneralMidiSong(librarySongSeconds, seed)))
            return {};
        if (!fs::exists(module, error) &&
            !media::writeMod(module, {.patterns = 4, .channels = 8, .seed = seed}))
            return {};
        songs.push_back(Song{.songPath = midi, .musicType = musicTypeMidi});
        songs.push_back(Song{.songPath = module, .musicType = musicTypeTracker});
    }
    return songs;
}

// The radio's songs, one of each family, in the order they come on air.
struct OnAir {
    std::string path;
    bool module = false;
    float gainDb = 0.0f;
};

ChannelHandle startSong(const OnAir& song, float volume) {
    ChannelHandle handle = song.module ? musicLoad(song.path) : streamCreateFile(song.path);
    channelSetGain(handle, song.gainDb, 0); // before it is heard
    channelSetVolume(handle, volume);
    channelPlay(handle);
    return handle;
}

int freeSong(ChannelHandle handle, bool module) {
    int underruns = channelUnderruns(handle);
    if (module)
        musicFree(handle);
    else
        streamFree(handle);
    return underruns;
}

// Crossfades song after song until `end`; the underruns of every channel that played.
int crossfadeUntil(const std::vector<OnAir>& songs, Clock::time_point end) {
    std::size_t playing = 0;
    ChannelHandle current = startSong(songs[playing], 1.0f);
    int underruns = 0;
    for (Clock::time_point fadeAt = Clock::now() + std::chrono::seconds(1);
         fadeAt + std::chrono::milliseconds(fadeMs) <= end;
         fadeAt += std::chrono::seconds(fadeEverySeconds)) {
        std::this_thread::sleep_until(fadeAt);
        std::size_t next = (playing + 1) % songs.size();
        ChannelHandle incoming = startSong(songs[next], 0.0f);
        channelSlideVolume(incoming, 1.0f, fadeMs);
        channelSlideVolume(current, 0.0f, fadeMs);
        // A value arriving for the song going out moves its gain while it fades.
        channelSetGain(current, songs[playing].gainDb - 2.0f, 2000);
        std::this_thread::sleep_until(fadeAt + std::chrono::milliseconds(fadeMs));
        underruns += freeSong(current, songs[playing].module);
        current = incoming;
        playing = next;
    }
    std::this_thread::sleep_until(end);
    return underruns + freeSong(current, songs[playing].module);
}

// Whether the thread still has songs before it, under its lock.
bool stillScanning(LoudnessState& loudness) {
    std::lock_guard lock(loudness.lock);
    return loudness.measuring || loudness.sweepNext < loudness.sweep.size();
}

// The CPU seconds of the threads at idle priority: the measuring thread's.
double idleThreadsCpuSeconds() {
    double seconds = 0.0;
    for (const auto& [tid, time] : bench::threadCpuSeconds(getpid()))
        if (sched_getscheduler(tid) == SCHED_IDLE)
            seconds += time.seconds;
    return seconds;
}

} // namespace

int main(int argc, char** argv) {
    if (!pinToTwoCores())
        return 2;
    fs::path folder = argc > 1 ? argv[1] : "bench/work/loudness-dropouts";
    std::error_code error;
    fs::create_directories(folder / "data", error);
    fs::remove(folder / "data" / "loudnessCache.json", error); // everything is measured anew
    std::vector<Song> library = makeLibrary(folder);
    std::vector<OnAir> radio = {
        {bench::ensureSong(folder, "on-air", bench::SongKind::Mp3, 40.0), false, -4.0f},
        {bench::ensureSong(folder, "on-air", bench::SongKind::Midi, 40.0), false, 3.0f},
        {bench::ensureSong(folder, "on-air", bench::SongKind::Module, 40.0), true, -7.0f}};
    if (library.empty() || radio[0].path.empty() || radio[1].path.empty() ||
        radio[2].path.empty() || !fs::exists(fluidR3, error)) {
        std::fprintf(stderr, "loudness-dropouts: cannot make the songs (or no %s)\n", fluidR3);
        return 1;
    }
    setenv("SDL_AUDIODRIVER", "dummy", 0); // a user may measure the real device instead

    int underruns = 0;
    bool scannedToTheEnd = false;
    std::size_t measured = 0;
    double measuringCpu = 0.0;
    {
        bench::OutputToFile log((folder / "player.log").string());
        if (!engineInit(AudioOutput::Device))
            return 2;
        loadAudioPlugins();
        FontHandle font = midiFontInit(fluidR3);
        MidiFontRecord record{font, -1, 0};
        midiStreamSetFonts(0, &record, 1);
        PlaybackState st;
        st.dataDirectory = (folder / "data").string();
        st.playlists.push_back(Playlist{.albumName = "library", .songs = library});
        startLoudnessWorker(st);
        queueLibraryForLoudness(st);
        underruns = crossfadeUntil(radio, Clock::now() + std::chrono::seconds(scanSeconds));
        scannedToTheEnd = stillScanning(st.loudness);
        measuringCpu = idleThreadsCpuSeconds();
        endLoudnessWorker(st);
        measured = st.loudness.values.size();
        midiFontFree(font);
        pluginFreeAll();
        engineFree();
    }
    if (!scannedToTheEnd) {
        std::fprintf(stderr, "loudness-dropouts: the thread ran out of songs before %d s\n",
                     scanSeconds);
        return 1;
    }
    bench::printInfoRow("loudness-dropouts-songs-measured", double(measured), "songs");
    bench::printInfoRow("loudness-dropouts-measuring-cpu", measuringCpu, "s");
    return bench::printRow("loudness-dropouts", underruns, "underruns", 0.0) ? 0 : 1;
}
