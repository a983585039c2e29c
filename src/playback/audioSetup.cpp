#include "playback/audioSetup.h"

#include "core/playerState.h"
#include "platform/platform.h"
#include "playback/engine/engine.h"
#include "playback/loading.h"
#include "playback/soundfonts.h"
#include "util/log.h"

namespace {

void stopAndFreeStreams(PlayerState& st) {
    for (ChannelHandle handle :
         {st.musicStream, st.musicStreamNext, st.trackerStream, st.trackerStreamNext}) {
        channelStop(handle);
        streamFree(handle);
    }
}

void freeEngine(PlayerState& st) {
    midiFontFree(st.soundFontMain);
    midiFontFree(st.soundFontNext);
    pluginFreeAll();
    engineFree();
}

} // namespace

void loadAudioPlugins(PlayerState&) {
    pluginLoad("bassmidi.dll");
    pluginLoad("bass_aac.dll");
    if (!pluginLoad("BASSFLAC.dll"))
        logErr("Failed to load BASSFLAC.dll\n");
}

void initAudioAtStartup(PlayerState&) {
    if (!engineInit())
        platform::messageBox("Failed to initialize BASS library!", "Error", platform::Icon::Error,
                             false);
}

void stopAllStreams(PlayerState& st) {
    stopAndFreeStreams(st);
}

void freeAudio(PlayerState& st) {
    for (ChannelHandle handle :
         {st.musicStream, st.musicStreamNext, st.trackerStream, st.trackerStreamNext})
        channelStop(handle);
    streamFree(st.musicStream);
    streamFree(st.musicStreamNext);
    musicFree(st.trackerStream);
    musicFree(st.trackerStreamNext);
    freeEngine(st);
}

void initAudio(PlayerState& st) {
    loadAudioPlugins(st);
    initAudioAtStartup(st);
    setUpSoundFonts(st);
}

void restartAudio(PlayerState& st) {
    stopAndFreeStreams(st);
    freeEngine(st);
    initAudio(st);
    startPlayback(st);
}
