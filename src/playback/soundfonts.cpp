#include "playback/soundfonts.h"

#include "library/rebuild.h"
#include "playback/engine/engine.h"
#include "playback/playbackState.h"

bool findSoundFonts(PlaybackState& st) {
    st.soundFonts = scanSoundFonts(st.soundFontDirectoryPath);
    return !st.soundFonts.empty();
}

SoundFontLoad loadDrawnSoundFont(PlaybackState& st) {
    if (st.soundFonts.empty())
        return SoundFontLoad::NoFonts;
    int last = static_cast<int>(st.soundFonts.size()) - 1;
    int index = st.soundFontRng.uniform(0, last);
    st.soundFontCount = static_cast<int>(st.soundFonts.size());
    st.soundFontMain = midiFontInit(st.soundFonts[index]);
    if (st.soundFontMain == 0)
        return SoundFontLoad::Failed;
    MidiFontRecord record{st.soundFontMain, -1, 0};
    midiStreamSetFonts(0, &record, 1);
    return SoundFontLoad::Loaded;
}

// Every MIDI song plays through the start-up's default font until the rotation arrives.
void rotateSoundFont(PlaybackState&) {}
