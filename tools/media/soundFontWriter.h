#pragma once
#include <string>

// Small SoundFont 2 files for tests and fuzzing: one looped 16-bit sample behind one instrument,
// offered by as many presets as asked for (programs 0, 1, ... of bank 0).
namespace media {

struct SoundFontSpec {
    int presets = 1;          // 0..128; 0 makes a font without a preset to play
    int sampleRate = 22050;   // of the sample, 400..192000 in the SoundFont's own terms
    double frequency = 440.0; // of the sample's wave, played back at key 69
};

// Writes the font; false when it cannot be written or its description does not fit the format.
bool writeSoundFont(const std::string& path, const SoundFontSpec& spec = {});

} // namespace media
