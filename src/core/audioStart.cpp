#include "core/audioStart.h"

#include "core/hostPort.h"
#include "core/playerState.h"
#include "playback/audioSetup.h"
#include "playback/engine/engine.h"
#include "playback/levelling.h"
#include "playback/soundfonts.h"
#include "settings/configFile.h"
#include "util/paths.h"

namespace {

void errorBox(const char* text) {
    host::messageBox(text, "Error", host::Icon::Error, false);
}

} // namespace

void showFontBox(FontBox box) {
    if (box != FontBox::None)
        errorBox(fontBoxText(box));
}

void initAudioAtStartup(PlayerState& st) {
    if (!engineInit(st.audioOutput))
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
    // currentSoundFont stays as it is, whichever font was drawn.
    showFontBox(st.soundFonts.empty() ? FontBox::NoFonts : loadDrawnSoundFont(st, 0));
}

void initAudio(PlayerState& st) {
    loadAudioPlugins();
    initAudioAtStartup(st);
    showFontBox(setUpSoundFonts(st));
}

void rescanSoundFonts(PlayerState& st) {
    showFontBox(rescanSoundFontFolder(st, loadConfig(st).soundFontDirectoryPath));
}

void stepSoundFont(PlayerState& st, int step) {
    const int count = static_cast<int>(st.soundFonts.size());
    if (count == 0) {
        showFontBox(FontBox::NoFonts);
        return;
    }
    st.songInfoDirty = true;
    FontBox box = selectSoundFont(st, (st.currentSoundFont + (step < 0 ? count - 1 : 1)) % count);
    if (box == FontBox::None)
        relevelAudible(st);
    showFontBox(box);
}
