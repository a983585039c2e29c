#include "core/volume.h"

#include "core/hostPort.h"
#include "core/playerState.h"
#include "playback/engine/engine.h"
#include "playback/slots.h"

void applyVolume(PlayerState& st) {
    st.volumeTextShown = true;
    st.lcdDirty = true;
    st.activeHandle = audibleHandle(st);
    channelSetVolume(st.activeHandle, st.volume);
    st.appliedVolume = st.volume;
    // A change while a preset is in force redefines that preset.
    if (st.volumeToggleState == volumeToggleHigh)
        st.highVolume = st.volume;
    if (st.volumeToggleState == volumeToggleLow)
        st.lowVolume = st.volume;
    host::notifyPlayerChanged(host::PlayerChange::Volume);
}

void toggleVolumeLevel(PlayerState& st) {
    if (st.volumeToggleState == volumeToggleLow) {
        st.volumeToggleState = volumeToggleHigh;
        st.volume = st.highVolume;
    } else {
        st.volumeToggleState = volumeToggleLow;
        st.volume = st.lowVolume;
    }
    channelSlideVolume(audibleHandle(st), st.volume, 2000);
    st.volumeTextShown = true;
    st.lcdDirty = true;
    host::notifyPlayerChanged(host::PlayerChange::Volume);
}
