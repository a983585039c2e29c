// soundfont-switch: the time the user-interface thread spends in a change of soundfont while both
// slots play MIDI songs on the SDL device (its dummy driver keeps real time): the rotation as a
// transition runs it (under the stream lock), and the hand step of the menu. FluidR3_GM and
// TimGM6mb alternate, each opened once before the count; the worse of the two medians of 10,
// at most 50 ms. The underruns of the two playing streams over the whole run stand beside (0).
//
// soundfont-first-open: the first midiFontInit of FluidR3_GM with its file evicted from the page
// cache, as after a reboot; median of 5, info, with the same open from a warm cache beside.
// argv[1] ends in the figure's name, which picks the figure.
#include "benchSongs.h"
#include "benchSupport.h"
#include "core/audioStart.h"
#include "core/playerState.h"
#include "core/transport.h"
#include "library/model.h"
#include "playback/engine/engine.h"
#include "playback/fadeWorker.h"
#include "playback/soundfonts.h"

#include <fcntl.h>
#include <filesystem>
#include <mutex>
#include <thread>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr const char* generalMidiFont = "/usr/share/sounds/sf2/FluidR3_GM.sf2";
constexpr const char* smallFont = "/usr/share/sounds/sf2/TimGM6mb.sf2";
constexpr int switches = 10;
constexpr int opens = 5;

void evict(const char* path) {
    int file = open(path, O_RDONLY);
    if (file < 0)
        return;
    posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
    close(file);
}

double openMs(bool cold) {
    if (cold)
        evict(generalMidiFont);
    FontHandle font = 0;
    double seconds = bench::secondsOf([&font] { font = midiFontInit(generalMidiFont); });
    if (font == 0)
        return -1.0;
    midiFontFree(font);
    return seconds * 1000.0;
}

int firstOpen(const fs::path& folder) {
    std::vector<double> cold, warm;
    {
        bench::OutputToFile log((folder / "player.log").string());
        if (!engineInit(AudioOutput::Null))
            return 2;
        for (int i = 0; i < opens; ++i) {
            cold.push_back(openMs(true));
            warm.push_back(openMs(false));
            if (cold.back() < 0.0 || warm.back() < 0.0)
                return 2;
        }
        engineFree();
    }
    bench::printInfoRow("soundfont-first-open-warm", bench::median(warm), "ms");
    bench::printInfoRow("soundfont-first-open", bench::median(cold), "ms");
    return 0;
}

bool makeGame(PlayerState& st, const fs::path& folder) {
    fs::path fonts = folder / "SoundFonts";
    std::error_code error;
    fs::create_directories(fonts, error);
    for (const char* font : {generalMidiFont, smallFont})
        fs::create_symlink(font, fonts / fs::path(font).filename(), error);
    st.soundFontDirectoryPath = fonts.string();
    for (const char* stem : {"first", "second"}) {
        std::string path = bench::ensureSong(folder, stem, bench::SongKind::Midi, 150.0);
        if (path.empty())
            return false;
        st.playlists.push_back(Playlist{stem, {Song{path, 0, 0, 0, musicTypeMidi}}, 1});
    }
    recountLibrary(st);
    st.scanSongCount = st.totalSongCount;
    st.scanPlaylistCount = static_cast<int>(st.playlists.size());
    return true;
}

void playPlaylist(PlayerState& st, int playlist) {
    st.playRequested = true;
    st.requestedPlaylist = playlist;
    startTransition(st);
    st.playRequested = false;
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
}

// Both medians, and the underruns; false when the set-up failed.
bool measureSwitches(const fs::path& folder, std::vector<double>& rotations,
                     std::vector<double>& steps, int& underruns) {
    PlayerState st;
    if (!makeGame(st, folder))
        return false;
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    if (!engineInit(AudioOutput::Device))
        return false;
    pluginLoad("bassmidi.dll");
    st.FADE_DURATION_MS = 200;
    st.directoryPaths = {folder.string()};
    st.songPlayDurationMax = 0;
    st.songsBeforeSoundfontChange = 1;
    st.soundFontSeed = 7;
    if (setUpSoundFonts(st) != FontBox::None)
        return false;
    playPlaylist(st, 0);
    // A fade longer than the run keeps the first song alive in its slot: both slots play MIDI,
    // and the rotation changes the font of the slot that a transition would fill next.
    st.FADE_DURATION_MS = 60000;
    playPlaylist(st, 1);
    for (int i = -2; i < switches; ++i) { // two rounds open each font once
        double rotation = bench::secondsOf([&st] {
            std::lock_guard lock(st.streamMutex);
            ++st.songsSinceFontChange;
            rotateSoundFont(st);
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        double step = bench::secondsOf([&st] { stepSoundFont(st, 1); });
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        if (i >= 0) {
            rotations.push_back(rotation * 1000.0);
            steps.push_back(step * 1000.0);
        }
    }
    underruns = channelUnderruns(st.musicStream) + channelUnderruns(st.musicStreamNext);
    endFadeWorkers(st);
    engineFree();
    return true;
}

int fontSwitch(const fs::path& folder) {
    std::vector<double> rotations, steps;
    int underruns = 0;
    {
        bench::OutputToFile log((folder / "player.log").string());
        if (!measureSwitches(folder, rotations, steps, underruns))
            return 2;
    }
    bench::printInfoRow("soundfont-switch-rotation", bench::median(rotations), "ms");
    bench::printInfoRow("soundfont-switch-step", bench::median(steps), "ms");
    bench::printInfoRow("soundfont-switch-underruns", underruns, "underruns");
    double worse = std::max(bench::median(rotations), bench::median(steps));
    return bench::printRow("soundfont-switch", worse, "ms", 50.0) && underruns == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    fs::path folder = argc > 1 ? argv[1] : "bench/work/soundfont-switch";
    std::string name = folder.filename().string();
    std::error_code error;
    fs::create_directories(folder, error);
    if (name == "soundfont-first-open")
        return firstOpen(folder);
    return fontSwitch(folder);
}
