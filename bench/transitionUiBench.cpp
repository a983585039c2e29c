// transition-ui-ms: the time the user-interface thread spends inside one startTransition, the
// call every change of song makes from a timer or a button; the window neither repaints nor
// answers while it runs. The real logic on the null output: a library of one playlist per family,
// each transition sent to a song by the requested-song route, with the player's own 8 s fade.
// Between transitions some frames are heard and the fade-out worker clears the old song, so each
// is an ordinary crossfade, not the hard cut of a transition during a fade. The figure is the
// worst family's median; each family's median is shown beside it.
#include "benchSongs.h"
#include "benchSupport.h"
#include "core/playerState.h"
#include "core/transport.h"
#include "library/model.h"
#include "playback/engine/engine.h"
#include "playback/fadeWorker.h"
#include "playback/slots.h"
#include "radio/segments.h"
#include "support/manualClock.h"

#include <cstdio>

namespace {

constexpr const char* generalMidiFont = "/usr/share/sounds/sf2/FluidR3_GM.sf2";
constexpr double songSeconds = 150.0; // long enough for the player's 45-110 s segments
constexpr int rounds = 7;             // measured transitions into each family
constexpr int heardMs = 300;          // of each song before the next transition

struct Family {
    const char* name;
    bench::SongKind kind;
};
constexpr Family families[] = {{"midi", bench::SongKind::Midi},
                               {"mp3", bench::SongKind::Mp3},
                               {"flac", bench::SongKind::Flac},
                               {"m4a", bench::SongKind::M4a},
                               {"module", bench::SongKind::Module}};

bool makeLibrary(PlayerState& st, const std::filesystem::path& folder) {
    for (const Family& family : families) {
        std::string path = bench::ensureSong(folder, family.name, family.kind, songSeconds);
        if (path.empty())
            return false;
        Song song;
        song.songPath = path;
        song.musicType = classifyExtension(bench::extensionOf(family.kind));
        st.playlists.push_back(Playlist{family.name, {song}, 1, 0, 0, 0});
    }
    recountLibrary(st);
    st.scanSongCount = st.totalSongCount;
    st.scanPlaylistCount = static_cast<int>(st.playlists.size());
    return true;
}

// Milliseconds inside one transition to the playlist's song, then some of it heard and the old
// song cleared; -1 when the new song is not playing.
double timedTransition(PlayerState& st, ManualClock& clock, int playlist) {
    st.playRequested = true;
    st.requestedPlaylist = playlist;
    st.requestedSong = 0;
    double ms = bench::secondsOf([&st] { startTransition(st); }) * 1000.0;
    st.playRequested = false;
    if (channelIsActive(audibleHandle(st)) != ChannelState::Playing)
        return -1.0;
    nullOutputPull(static_cast<std::size_t>(heardMs) * 441 / 10);
    clock.advance(st.FADE_DURATION_MS + heardMs);
    settleFadeWorkers(st);
    return st.fadeWorkerRunning == 0 ? ms : -1.0;
}

// Every family in turn, so that each transition leaves a song of another family; the first
// round warms the files and the font and is not counted.
bool measure(PlayerState& st, ManualClock& clock, std::vector<std::vector<double>>& times) {
    times.assign(std::size(families), {});
    for (int round = 0; round <= rounds; ++round) {
        for (int p = 0; p < static_cast<int>(std::size(families)); ++p) {
            double ms = timedTransition(st, clock, p);
            if (ms < 0.0) {
                std::fprintf(stderr, "transition-ui-ms: the %s song did not play\n",
                             families[p].name);
                return false;
            }
            if (round > 0)
                times[p].push_back(ms);
        }
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    std::filesystem::path folder = argc > 1 ? argv[1] : "bench/work/transition-ui-ms";
    PlayerState st;
    if (!makeLibrary(st, folder))
        return 2;
    if (!engineInit(AudioOutput::Null))
        return 2;
    for (const char* plugin : {"bassmidi.dll", "bass_aac.dll", "BASSFLAC.dll"})
        pluginLoad(plugin);
    FontHandle font = midiFontInit(generalMidiFont);
    MidiFontRecord record{font, -1, 0};
    if (font == 0 || !midiStreamSetFonts(0, &record, 1)) {
        std::fprintf(stderr, "transition-ui-ms: cannot load %s\n", generalMidiFont);
        return 2;
    }
    ManualClock clock;
    st.fadeClock = &clock;
    st.rand15.seed(3); // the same segments every run
    st.rawRadio = 0;

    std::vector<std::vector<double>> times;
    bool measured = false;
    {
        bench::OutputToFile log((folder / "player.log").string());
        measured = measure(st, clock, times);
        endFadeWorkers(st);
    }
    engineFree();
    pluginFreeAll();
    if (!measured)
        return 2;
    double worst = 0.0;
    for (std::size_t p = 0; p < times.size(); ++p) {
        double median = bench::median(times[p]);
        bench::printInfoRow(std::string("transition-ui-ms-") + families[p].name, median, "ms");
        worst = std::max(worst, median);
    }
    return bench::printRow("transition-ui-ms", worst, "ms", 15.0) ? 0 : 1;
}
