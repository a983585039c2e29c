#include "playback/audioSetup.h"

#include "playback/engine/engine.h"
#include "playback/playbackState.h"
#include "util/log.h"

#include <array>
#include <malloc.h>

namespace {

std::array<ChannelHandle, 4> allChannels(const PlaybackState& st) {
    return {st.musicStream, st.musicStreamNext, st.trackerStream, st.trackerStreamNext};
}

void freeEngine(PlaybackState& st) {
    midiFontFree(st.soundFontMain);
    midiFontFree(st.soundFontNext);
    pluginFreeAll();
    engineFree();
}

} // namespace

void loadAudioPlugins() {
    pluginLoad("bassmidi.dll");
    pluginLoad("bass_aac.dll");
    if (!pluginLoad("BASSFLAC.dll"))
        logErr("Failed to load BASSFLAC.dll\n");
}

void stopAllStreams(PlaybackState& st) {
    for (ChannelHandle handle : allChannels(st)) {
        channelStop(handle);
        streamFree(handle);
    }
}

void freeAudio(PlaybackState& st) {
    for (ChannelHandle handle : allChannels(st))
        channelStop(handle);
    streamFree(st.musicStream);
    streamFree(st.musicStreamNext);
    musicFree(st.trackerStream);
    musicFree(st.trackerStreamNext);
    freeEngine(st);
    // The fonts and decoders just freed were allocated on the engine's own threads, whose malloc
    // arenas keep the pages until a fade worker trims them: a stopped player would go on holding
    // several megabytes it no longer uses. Under half a millisecond here, once per stop.
    malloc_trim(0);
}

void releaseAudio(PlaybackState& st) {
    stopAllStreams(st);
    freeEngine(st);
}
