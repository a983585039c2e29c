#include "playback/soundfonts.h"

#include "core/playerState.h"
#include "library/rebuild.h"
#include "platform/platform.h"
#include "playback/engine/engine.h"
#include "settings/configFile.h"
#include "util/paths.h"

#include <random>

namespace {

void reportNoSoundFonts() {
    platform::messageBox("No soundfont files found.", "Error", platform::Icon::Error, false);
}

// Draws one of the fonts found and makes it the default of the MIDI streams to come.
void loadDrawnSoundFont(PlayerState& st) {
    std::mt19937 generator(std::random_device{}());
    int last = static_cast<int>(st.soundFonts.size()) - 1;
    int index = std::uniform_int_distribution<int>(0, last)(generator);
    st.soundFontCount = static_cast<int>(st.soundFonts.size());
    st.soundFontMain = midiFontInit(st.soundFonts[index]);
    if (st.soundFontMain == 0) {
        platform::messageBox("Failed to load the selected soundfont.", "Error",
                             platform::Icon::Error, false);
        return;
    }
    MidiFontRecord record{st.soundFontMain, -1, 0};
    midiStreamSetFonts(0, &record, 1);
}

} // namespace

void setUpStartupSoundFonts(PlayerState& st) {
    ConfigPaths config = loadConfig(st);
    st.soundFontDirectoryPath = config.soundFontDirectoryPath;
    st.marbleTunnelPath = config.marbleTunnelPath;
    st.soundFonts = scanSoundFonts(st.soundFontDirectoryPath);
    if (st.soundFonts.empty()) {
        st.marbleTunnelPath = parentOfCurrentDirectory();
        st.soundFontDirectoryPath = joinPath(st.marbleTunnelPath, "/HarpTone/SoundFonts");
        st.soundFonts = scanSoundFonts(st.soundFontDirectoryPath);
        saveConfig(st);
        if (st.soundFonts.empty()) {
            reportNoSoundFonts();
            return;
        }
    }
    loadDrawnSoundFont(st);
}

void setUpSoundFonts(PlayerState& st) {
    st.soundFonts = scanSoundFonts(st.soundFontDirectoryPath);
    if (st.soundFonts.empty()) {
        reportNoSoundFonts();
        return;
    }
    loadDrawnSoundFont(st);
}

// Every MIDI song plays through the start-up's default font until the rotation arrives.
void rotateSoundFont(PlayerState&) {}
