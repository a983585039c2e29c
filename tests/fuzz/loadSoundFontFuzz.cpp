#include "fuzz/playDecoder.h"
#include "media/midiWriter.h"

namespace {

// A short song of every kind of instrument, written once: what a damaged font must still play.
const std::string& song() {
    static const std::string path = [] {
        std::string written = fuzzFixtureFolder() + "/band.mid";
        if (!media::writeMidi(written, media::bandSong(3.0)))
            fuzzFailure("cannot write " + written);
        return written;
    }();
    return path;
}

} // namespace

// A font that loads is handed to a MIDI stream, which plays, seeks, and changes to no font and
// back as the soundfont rotation does.
FUZZ_TARGET(loadSoundFont) {
    FuzzFile file("font.sf2", bytes);
    EngineError error = EngineError::Ok;
    SoundFontRef font = loadSoundFont(file.path(), error);
    if (!font)
        return;
    std::unique_ptr<MidiDecoder> decoder = openMidiDecoder(song(), {font}, error);
    if (!decoder)
        fuzzFailure("the song does not open with a font that loaded");
    playDecoder(*decoder);
    decoder->setFonts({});
    decoder->setFonts({font});
    playDecoder(*decoder);
}
