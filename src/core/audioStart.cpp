#include "core/audioStart.h"

#include "core/hostPort.h"
#include "core/playerState.h"
#include "playback/audioSetup.h"
#include "playback/engine/engine.h"
#include "playback/soundfonts.h"
#include "settings/configFile.h"
#include "util/paths.h"

namespace {

void errorBox(const char* text) {
    host::messageBox(text, "Error", host::Icon::Error, false);
}

void reportSoundFontLoad(SoundFontLoad result) {
    if (result == SoundFontLoad::NoFonts)
        errorBox("No soundfont files found.");
    else if (result == SoundFontLoad::Failed)
        errorBox("Failed to load the selected soundfont.");
}

} // namespace

void initAudioAtStartup(PlayerState&) {
    if (!engineInit())
        errorBox("Failed to initialize BASS library!");
}

void setUpStartupSoundFonts(PlayerState& st) {
    ConfigPaths config = loadConfig(st);
    st.soundFontDirectoryPath = config.soundFontDirectoryPath;
    st.marbleTunnelPath = config.marbleTunnelPath;
    if (!findSoundFonts(st)) {
        st.marbleTunnelPath = parentOfCurrentDirectory();
        st.soundFontDirectoryPath = joinPath(st.marbleTunnelPath, "/HarpTone/SoundFonts");
        findSoundFonts(st);
        saveConfig(st);
    }
    reportSoundFontLoad(loadDrawnSoundFont(st));
}

void setUpSoundFonts(PlayerState& st) {
    findSoundFonts(st);
    reportSoundFontLoad(loadDrawnSoundFont(st));
}

void initAudio(PlayerState& st) {
    loadAudioPlugins();
    initAudioAtStartup(st);
    setUpSoundFonts(st);
}
