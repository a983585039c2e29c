// fuzzSeeds FOLDER: the first inputs of the decoder targets, made by tools/media at fuzz time and
// never committed, as FOLDER/TARGET/NAME. Each varies what the writers can (channels, rates,
// lengths, track and order counts, presets), and where a writer cannot, a field of its output is
// patched to the extreme.
#include "media/encodedAudio.h"
#include "media/midiWriter.h"
#include "media/moduleWriter.h"
#include "media/soundFontWriter.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

namespace fs = std::filesystem;

namespace {

int failures = 0;

void check(bool made, const fs::path& path) {
    if (!made) {
        std::fprintf(stderr, "fuzzSeeds: could not make %s\n", path.c_str());
        ++failures;
    }
}

fs::path folderFor(const fs::path& root, const std::string& target) {
    fs::create_directories(root / target);
    return root / target;
}

// A copy of a made file with bytes replaced at an offset: a field no writer sets so far.
void patchCopy(const fs::path& from, const fs::path& to, std::size_t at, const std::string& bytes) {
    std::ifstream in(from, std::ios::binary);
    std::string data{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (data.size() < at + bytes.size())
        return check(false, to);
    data.replace(at, bytes.size(), bytes);
    std::ofstream(to, std::ios::binary) << data;
}

// FLAC's STREAMINFO packs rate (20 bits), channels - 1 (3), bits - 1 (5) and the length in
// samples (36) into the eight bytes from offset 18.
std::string streamInfo(std::uint32_t rate, int channels, std::uint64_t samples) {
    std::uint64_t packed = std::uint64_t{rate} << 44 | std::uint64_t(channels - 1) << 41 |
                           std::uint64_t{15} << 36 | samples;
    std::string bytes;
    for (int i = 7; i >= 0; --i)
        bytes.push_back(static_cast<char>(packed >> (8 * i)));
    return bytes;
}

// WAVs of the extremes a WAV header can state, under the target's extension all the same:
// FFmpeg goes by the bytes.
void writeOddWavs(const fs::path& folder) {
    const std::pair<const char*, media::SineSpec> wavs[] = {
        {"channels0.wav", {440.0, 0.1, 44100, 0, 0.5}},
        {"channels255.wav", {440.0, 0.01, 44100, 255, 0.5}},
        {"rate1Hz.wav", {0.25, 3.0, 1, 2, 0.5}},
        {"rate768kHz.wav", {440.0, 0.02, 768000, 2, 0.5}},
    };
    for (const auto& [name, spec] : wavs)
        check(!media::writeSineWav((folder / name).string(), spec).empty(), folder / name);
}

void writeFfmpegSeeds(const fs::path& root) {
    for (const char* extension : {"mp3", "m4a", "flac"}) {
        std::string target =
            std::string("openFfmpegDecoder") + char(extension[0] - 'a' + 'A') + (extension + 1);
        fs::path folder = folderFor(root, target);
        fs::path sine = folder / (std::string("sine.") + extension);
        check(!media::writeEncodedSine(sine.string(), {440.0, 0.5, 44100, 2, 0.5}).empty(), sine);
        fs::path mono = folder / (std::string("mono48k.") + extension);
        check(!media::writeEncodedSine(mono.string(), {440.0, 0.3, 48000, 1, 0.5}).empty(), mono);
        writeOddWavs(folder);
    }
    fs::path mp3 = root / "openFfmpegDecoderMp3";
    check(!media::writeEncodedSine((mp3 / "noXing.mp3").string(), {}, {"-write_xing", "0"}).empty(),
          mp3 / "noXing.mp3");
    fs::path flac = root / "openFfmpegDecoderFlac";
    patchCopy(flac / "sine.flac", flac / "noLength.flac", 18, streamInfo(44100, 2, 0));
    patchCopy(flac / "sine.flac", flac / "rate1Hz.flac", 18, streamInfo(1, 2, 22050));
    patchCopy(flac / "sine.flac", flac / "rate768kHz.flac", 18, streamInfo(768000, 2, 22050));
    patchCopy(flac / "sine.flac", flac / "channels8.flac", 18, streamInfo(44100, 8, 22050));
}

using ModuleWriter =
    std::function<std::optional<double>(const std::string&, const media::TrackerSong&)>;

void writeModuleSeeds(const fs::path& root) {
    const struct {
        const char* target;
        const char* extension;
        ModuleWriter write;
        int fewestChannels;
        int mostChannels;
    } formats[] = {
        {"openModuleDecoderMod", ".mod", media::writeMod, 4, 32},
        {"openModuleDecoderXm", ".xm", media::writeXm, 2, 32},
        {"openModuleDecoderS3m", ".s3m", media::writeS3m, 1, 16},
        {"openModuleDecoderIt", ".it", media::writeIt, 1, 64},
    };
    for (const auto& format : formats) {
        fs::path folder = folderFor(root, format.target);
        const std::pair<std::string, media::TrackerSong> songs[] = {
            {"plain", {}},
            {"fewestChannels", {.channels = format.fewestChannels}},
            {"mostChannels", {.patterns = 2, .channels = format.mostChannels, .rowsPerPattern = 8}},
            {"noOrders", {.patterns = 2, .noOrders = true}},
            {"fastest", {.rowsPerPattern = 1, .speed = 1, .bpm = 255}},
        };
        for (const auto& [name, song] : songs) {
            fs::path path = folder / (name + format.extension);
            check(format.write(path.string(), song).has_value(), path);
        }
    }
    // The .xm's channel count is a 16-bit field at 68: none, and more than any tracker plays.
    fs::path xm = root / "openModuleDecoderXm";
    patchCopy(xm / "plain.xm", xm / "channels0.xm", 68, std::string("\0\0", 2));
    patchCopy(xm / "plain.xm", xm / "channels255.xm", 68, std::string("\xff\0", 2));
}

void writeMidiSeeds(const fs::path& root) {
    fs::path folder = folderFor(root, "openMidiDecoder");
    media::MidiSong manyTracks = media::bandSong(1.0);
    manyTracks.emptyTracks = 0xFFFF - 5; // the tempo track and four channels' tracks
    const std::pair<const char*, media::MidiSong> songs[] = {
        {"band.mid", media::bandSong(3.0)},
        {"tracks65535.mid", manyTracks},
        {"noDuration.mid", {}},
        {"coarseTicks.mid",
         {.division = 1,
          .tempos = {{0.0, 30.0}, {0.5, 300.0}},
          .programs = {{0, 19}},
          .notes = {{0, 60, 100, 0.0, 1.0}},
          .end = 2.0}},
    };
    for (const auto& [name, song] : songs)
        check(media::writeMidi((folder / name).string(), song).has_value(), folder / name);
    // Time counted in SMPTE frames (-25 frames a second, 40 ticks each), which FluidSynth refuses.
    patchCopy(folder / "band.mid", folder / "smpte.mid", 12, "\xe7\x28");
}

void writeSoundFontSeeds(const fs::path& root) {
    fs::path folder = folderFor(root, "loadSoundFont");
    const std::pair<const char*, media::SoundFontSpec> fonts[] = {
        {"plain.sf2", {}},
        {"noPresets.sf2", {.presets = 0}},
        {"allPrograms.sf2", {.presets = 128, .sampleRate = 400}},
        {"rate192kHz.sf2", {.presets = 1, .sampleRate = 192000}},
    };
    for (const auto& [name, spec] : fonts)
        check(media::writeSoundFont((folder / name).string(), spec), folder / name);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: fuzzSeeds FOLDER\n");
        return 2;
    }
    fs::path root = argv[1];
    writeFfmpegSeeds(root);
    writeModuleSeeds(root);
    writeMidiSeeds(root);
    writeSoundFontSeeds(root);
    return failures == 0 ? 0 : 1;
}
