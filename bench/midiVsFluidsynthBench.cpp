// Our MIDI decoder against the fluidsynth command on a dense minute of General MIDI, in CPU time
// (user + system). Each run on either side loads the soundfont and renders the whole song, with
// FluidSynth's default reverb, chorus, polyphony and interpolation at 44100 Hz in float; ours may
// take at most 15% more. The command renders on past the song's last event for as long as notes
// ring, where ours stops at the file's end: the song's tracks run on for a quiet stretch after its
// last note, so that both sides render the same tail (the command then adds some two seconds of
// silence of its own, which cost it little). It also starts a process and writes its output to a
// file: small next to loading the font and a minute of 16 busy channels.
#include "benchSupport.h"
#include "media/midiWriter.h"
#include "media/process.h"
#include "playback/engine/decoder.h"

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

namespace {

constexpr double songSeconds = 60.0;
constexpr double quietSeconds = 10.0; // longer than the longest release and reverb tail
constexpr const char* bigFont = "/usr/share/sounds/sf2/FluidR3_GM.sf2";
constexpr const char* smallFont = "/usr/share/sounds/sf2/TimGM6mb.sf2";

double processCpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

// Loads the font, opens the song and renders it to its end; the font and the decoder are freed
// inside the measurement, as the command frees them before it exits. -1 on failure.
double cpuOfOurs(const std::string& font, const std::string& song, std::uint64_t& frames) {
    double start = processCpuSeconds();
    {
        EngineError error = EngineError::Ok;
        SoundFontRef ref = loadSoundFont(font, error);
        std::unique_ptr<MidiDecoder> decoder = ref ? openMidiDecoder(song, {ref}, error) : nullptr;
        if (!decoder)
            return -1.0;
        std::vector<float> block(2 * 4096);
        frames = 0;
        while (std::size_t got = decoder->render(block.data(), 4096))
            frames += got;
    }
    return processCpuSeconds() - start;
}

// `fluidsynth -ni -q -F out -r 44100 -O float -T raw font song`, started without a shell; its CPU
// time comes from wait4. -1 on failure.
double cpuOfFluidsynth(const std::string& font, const std::string& song, const std::string& out) {
    std::vector<std::string> args = {"fluidsynth", "-ni",   "-q", "-F",  out,  "-r", "44100",
                                     "-O",         "float", "-T", "raw", font, song};
    media::ProgramRun run = media::runProgram(std::move(args));
    return run.ok ? run.cpuSeconds : -1.0;
}

} // namespace

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    fs::path folder = argc > 1 ? argv[1] : "bench/work/midi-vs-fluidsynth";
    std::error_code ec;
    fs::create_directories(folder, ec);
    std::string song = (folder / "dense-gm-60s-then-quiet.mid").string();
    std::string out = (folder / "fluidsynth-out.raw").string();
    media::MidiSong dense = media::denseGeneralMidiSong(songSeconds);
    dense.end = songSeconds + quietSeconds;
    if (!fs::exists(song, ec) && !media::writeMidi(song, dense)) {
        std::fprintf(stderr, "cannot write %s\n", song.c_str());
        return 1;
    }
    std::string font = fs::exists(bigFont, ec) ? bigFont : smallFont;
    std::fprintf(stderr, "midi-vs-fluidsynth: %s with %s\n", song.c_str(), font.c_str());

    std::uint64_t frames = 0;
    if (cpuOfOurs(font, song, frames) < 0.0 || cpuOfFluidsynth(font, song, out) < 0.0) {
        std::fprintf(stderr, "a warm-up run failed\n");
        return 1;
    }
    constexpr int rounds = 5;
    std::vector<double> ours, theirs, ratios;
    std::uint64_t commandFrames = 0;
    for (int round = 0; round < rounds; ++round) {
        double mine = cpuOfOurs(font, song, frames);
        double command = cpuOfFluidsynth(font, song, out);
        std::error_code sizeError;
        commandFrames = fs::file_size(out, sizeError) / (2 * sizeof(float));
        if (mine <= 0.0 || command <= 0.0 || frames == 0 || commandFrames == 0)
            return 1;
        ours.push_back(mine);
        theirs.push_back(command);
        ratios.push_back(mine / command);
    }
    bench::printInfoRow("midi-ours-seconds", double(frames) / 44100.0, "s");
    bench::printInfoRow("midi-fluidsynth-seconds", double(commandFrames) / 44100.0, "s");
    bench::printInfoRow("midi-ours-cpu", bench::median(ours), "s");
    bench::printInfoRow("midi-fluidsynth-cpu", bench::median(theirs), "s");
    return bench::printRow("midi-vs-fluidsynth", bench::median(ratios), "x", 1.15) ? 0 : 1;
}
