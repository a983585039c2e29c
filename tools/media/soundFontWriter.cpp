#include "media/soundFontWriter.h"

#include <cmath>
#include <cstdint>
#include <fstream>
#include <numbers>

namespace media {
namespace {

constexpr int sampleFrames = 2000;
constexpr int sampleGuard = 46; // zero frames every sample must be followed by
constexpr int generatorInstrument = 41;
constexpr int generatorSampleModes = 54;
constexpr int generatorSampleId = 53;

void putLe(std::string& out, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
}

void putName(std::string& out, const std::string& name) {
    std::string field = name.substr(0, 19);
    field.resize(20, '\0');
    out += field;
}

// A RIFF chunk: its id, its size, its data and a pad byte to an even size.
std::string chunk(const std::string& id, const std::string& data) {
    std::string out = id;
    putLe(out, static_cast<std::uint32_t>(data.size()), 4);
    out += data;
    if (data.size() % 2 != 0)
        out.push_back('\0');
    return out;
}

std::string list(const std::string& type, const std::string& chunks) {
    return chunk("LIST", type + chunks);
}

std::string sampleData(const SoundFontSpec& spec) {
    std::string out;
    for (int i = 0; i < sampleFrames + sampleGuard; ++i) {
        double phase = 2 * std::numbers::pi * spec.frequency * i / spec.sampleRate;
        double value = i < sampleFrames ? 0.5 * std::sin(phase) : 0.0;
        putLe(out, static_cast<std::uint16_t>(static_cast<std::int16_t>(value * 32767)), 2);
    }
    return out;
}

// The preset, instrument and sample tables, each closed by its terminal record. Every preset has
// one zone that names the instrument; the instrument has one zone that loops the sample.
std::string hydra(const SoundFontSpec& spec) {
    std::string phdr, pbag, pgen, inst, ibag, igen, shdr;
    for (int preset = 0; preset <= spec.presets; ++preset) {
        putName(phdr, preset < spec.presets ? "preset " + std::to_string(preset) : "EOP");
        putLe(phdr, static_cast<std::uint32_t>(preset), 2);
        putLe(phdr, 0, 2);                                       // bank
        putLe(phdr, static_cast<std::uint32_t>(preset), 2);      // first zone
        putLe(phdr, 0, 4), putLe(phdr, 0, 4), putLe(phdr, 0, 4); // library, genre, morphology
        putLe(pbag, static_cast<std::uint32_t>(preset), 2);      // first generator
        putLe(pbag, 0, 2);                                       // first modulator
        if (preset < spec.presets)
            putLe(pgen, generatorInstrument, 2), putLe(pgen, 0, 2);
    }
    putLe(pgen, 0, 4);
    for (int i = 0; i < 2; ++i) { // the instrument, then its terminal record
        putName(inst, i == 0 ? "sine" : "EOI");
        putLe(inst, static_cast<std::uint32_t>(i), 2);
        putLe(ibag, static_cast<std::uint32_t>(2 * i), 2), putLe(ibag, 0, 2);
    }
    putLe(igen, generatorSampleModes, 2), putLe(igen, 1, 2); // loop continuously
    putLe(igen, generatorSampleId, 2), putLe(igen, 0, 2);    // always the last generator
    putLe(igen, 0, 4);
    for (int i = 0; i < 2; ++i) { // the sample, then its terminal record
        bool last = i == 1;
        putName(shdr, last ? "EOS" : "sine");
        putLe(shdr, 0, 4);                           // start
        putLe(shdr, last ? 0 : sampleFrames, 4);     // end
        putLe(shdr, last ? 0 : 8, 4);                // loop start
        putLe(shdr, last ? 0 : sampleFrames - 8, 4); // loop end
        putLe(shdr, last ? 0 : static_cast<std::uint32_t>(spec.sampleRate), 4);
        putLe(shdr, last ? 0 : 69, 1); // original key
        putLe(shdr, 0, 1);             // pitch correction
        putLe(shdr, 0, 2);             // no link
        putLe(shdr, last ? 0 : 1, 2);  // mono
    }
    std::string noModulators(10, '\0');
    return chunk("phdr", phdr) + chunk("pbag", pbag) + chunk("pmod", noModulators) +
           chunk("pgen", pgen) + chunk("inst", inst) + chunk("ibag", ibag) +
           chunk("imod", noModulators) + chunk("igen", igen) + chunk("shdr", shdr);
}

} // namespace

bool writeSoundFont(const std::string& path, const SoundFontSpec& spec) {
    if (spec.presets < 0 || spec.presets > 128 || spec.sampleRate < 400 ||
        spec.sampleRate > 192000 || !(spec.frequency > 0.0))
        return false;
    std::string version;
    putLe(version, 2, 2), putLe(version, 1, 2);
    // FluidSynth refuses an INFO text of odd size, as the SoundFont format asks for even ones.
    std::string info = chunk("ifil", version) + chunk("isng", std::string("EMU8000", 8)) +
                       chunk("INAM", std::string("marble test font\0", 18));
    std::string body = "sfbk" + list("INFO", info) + list("sdta", chunk("smpl", sampleData(spec))) +
                       list("pdta", hydra(spec));
    std::string file = chunk("RIFF", body);
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(file.data(), static_cast<std::streamsize>(file.size()));
    return static_cast<bool>(out.flush());
}

} // namespace media
