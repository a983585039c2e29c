#include "fuzz/playDecoder.h"

namespace {

// The small General MIDI font of Debian's timgm6mb-soundfont, loaded once: FluidR3's set-up
// would dominate each input. Kept for the whole run, as the player keeps its fonts.
const std::vector<SoundFontRef>& fonts() {
    static const std::vector<SoundFontRef> loaded = [] {
        EngineError error = EngineError::Ok;
        SoundFontRef font = loadSoundFont("/usr/share/sounds/sf2/TimGM6mb.sf2", error);
        return font ? std::vector<SoundFontRef>{font} : std::vector<SoundFontRef>{};
    }();
    return loaded;
}

} // namespace

// The tempo map is ours, read from the bytes before FluidSynth's player sees them.
FUZZ_TARGET(openMidiDecoder) {
    FuzzFile file("song.mid", bytes);
    EngineError error = EngineError::Ok;
    if (std::unique_ptr<MidiDecoder> decoder = openMidiDecoder(file.path(), fonts(), error))
        playDecoder(*decoder);
}
