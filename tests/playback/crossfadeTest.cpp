#include "playback/crossfade.h"

#include "core/transport.h"
#include "core/volume.h"
#include "playback/audioSetup.h"
#include "playback/radioFixture.h"
#include "playback/slots.h"
#include "radio/segments.h"

#include <tuple>

namespace {

using Crossfade = Radio;

TEST_F(Crossfade, TheOldSongSlidesOutWhileTheNewOneSlidesInAndTheOldSlotIsFreedAfter) {
    addPlaylists({sine("a.flac", 5.0, 441), sine("b.flac", 5.0, 882)});
    request(0);
    startPlayback(st); // a start with nothing playing draws anew: take what it chose
    advance(200);
    ChannelHandle first = st.musicStream;
    EXPECT_FLOAT_EQ(volumeOf(first), st.volume);
    EXPECT_EQ(transportState(st), TransportState::Playing);

    transition(1, 0);
    ChannelHandle second = st.musicStreamNext;
    EXPECT_EQ(transportState(st), TransportState::Crossfading);
    advance(100);
    EXPECT_NEAR(volumeOf(first), st.volume / 2, 1e-4);
    EXPECT_NEAR(volumeOf(second), st.volume / 2, 1e-4);
    EXPECT_EQ(channelIsActive(first), ChannelState::Playing);
    advance(100);
    EXPECT_TRUE(isFreed(first));
    EXPECT_FLOAT_EQ(volumeOf(second), st.volume);
    EXPECT_EQ(transportState(st), TransportState::Playing);

    // Whoever shows the player hears of each change instead of polling for it.
    togglePause(st);
    applyVolume(st);
    using host::PlayerChange;
    EXPECT_EQ(platform.changes,
              (std::vector<PlayerChange>{PlayerChange::Song, PlayerChange::Song,
                                         PlayerChange::PlayState, PlayerChange::Volume}));
}

TEST_F(Crossfade, MidiAndTrackerHandOverInBothDirections) {
    setDefaultFont();
    addPlaylists({midi("a.mid", 6.0), module("b.mod")});
    transition(0);
    ChannelHandle song = st.musicStreamNext;
    ASSERT_NE(song, 0u);

    transition(1, 100); // MIDI in the Next slot fades out, the module fades into the main one
    ChannelHandle tracker = st.trackerStream;
    ASSERT_NE(tracker, 0u);
    EXPECT_NEAR(volumeOf(song), st.volume / 2, 1e-4);
    EXPECT_GT(peak(advance(100)), 0.0f);
    EXPECT_TRUE(isFreed(song));
    EXPECT_EQ(channelIsActive(tracker), ChannelState::Playing);

    transition(0);
    EXPECT_TRUE(isFreed(tracker));
    EXPECT_EQ(channelIsActive(st.musicStreamNext), ChannelState::Playing);
}

TEST_F(Crossfade, TwoPressesWithinOneFadeCutHardAndTheThirdSongFadesInAlone) {
    addPlaylists({sine("a.flac", 5.0), sine("b.flac", 5.0), sine("c.flac", 5.0)});
    transition(0);
    ChannelHandle first = st.musicStreamNext;
    transition(1, 50);
    ChannelHandle second = st.musicStream;
    transition(2, 0); // within the fade: the hard cut
    ChannelHandle third = st.musicStreamNext;
    EXPECT_TRUE(isFreed(first) && isFreed(second));
    EXPECT_EQ(volumeOf(third), 0.0f);
    advance(100);
    EXPECT_NEAR(volumeOf(third), st.volume / 2, 1e-4);
    // The old worker still wakes, clears the pair that is not audible and leaves the new song.
    advance(100);
    EXPECT_EQ(channelIsActive(third), ChannelState::Playing);
    // The next press is an ordinary fade again.
    transition(0, 0);
    EXPECT_EQ(transportState(st), TransportState::Crossfading);
    EXPECT_EQ(channelIsActive(third), ChannelState::Playing);
}

TEST_F(Crossfade, WithoutAFadeTheWorkerClearsTheOldSlotAtOnceAndNeverTheNewOne) {
    st.FADE_DURATION_MS = 0;
    addPlaylists({sine("a.flac", 3.0), sine("b.flac", 3.0)});
    for (int i = 0; i < 20; ++i) {
        transition(i % 2, 0);
        EXPECT_EQ(transportState(st), TransportState::Playing) << i;
        EXPECT_FLOAT_EQ(volumeOf(audibleHandle(st)), st.volume);
    }
}

TEST_F(Crossfade, AFailedLoadFallsSilentKeepsItsHistoryRowAndTheNextPressRecovers) {
    addPlaylists({module("a.mod"), dir.write("broken.mp3", "not audio").string()});
    transition(0);
    st.playRequested = false;
    st.firstFamilyPick = false;
    st.rawTracker = 0; // the draw can only reach the broken MP3
    std::size_t rows = st.songHistory.size();
    transition();
    EXPECT_EQ(std::tuple(st.songHistory.size(), st.songHistory.back().plistIndex),
              std::tuple(rows + 1, 1));
    EXPECT_EQ(peak(advance(100)), 0.0f);
    EXPECT_EQ(transportState(st), TransportState::Idle);
    refreshPosition(st);
    EXPECT_EQ(st.positionSeconds, -1.0);
    EXPECT_FALSE(segmentEndDue(st));
    transition(0);
    EXPECT_GT(peak(advance(100)), 0.0f);
}

// A dead address must not silence a radio that runs unattended; a station the user chose stays.
TEST_F(Crossfade, AStationThatFailsMovesTheRadioOnAfterThreeSecondsUnlessTheUserChoseIt) {
    addPlaylists({sine("a.flac", 30.0)});
    st.radioStations = {RadioStation{"Dead", "http://127.0.0.1:1/"}};
    st.stationCount = 1;
    transition(0);
    st.playRequested = st.firstFamilyPick = false;
    st.rawMIDI = st.rawMP3 = st.rawTracker = st.rawFav = 0;
    st.rawRadio = 100;
    for (int mode : {stationModeRadio, stationModeStation}) {
        st.stationMode = mode;
        st.currentStation = 0;
        transition(-1, 2900);
        ASSERT_TRUE(st.onStation);
        std::size_t rows = st.songHistory.size();
        afterRepaintTest(st);
        EXPECT_EQ(st.songHistory.size(), rows);
        advance(200);
        afterRepaintTest(st);
        EXPECT_EQ(st.songHistory.size(), mode == stationModeRadio ? rows + 1 : rows) << mode;
    }
}

TEST_F(Crossfade, DuringAFadeAVolumeChangeEndsOnlyTheFadeInAndPauseTakesTheMainSlotFirst) {
    addPlaylists({sine("a.flac", 5.0), sine("b.flac", 5.0), sine("c.flac", 5.0)});
    transition(0); // into the Next slot
    ChannelHandle old = st.musicStreamNext;
    transition(1, 50); // into the main slot
    st.volume = 0.9f;
    applyVolume(st);
    EXPECT_EQ(volumeOf(st.musicStream), 0.9f);
    EXPECT_NEAR(volumeOf(old), 0.5f * 0.75f, 1e-4);
    advance(150);

    transition(2, 0); // into the Next slot: the main one is going, and pause asks it first
    ChannelHandle going = st.musicStream;
    togglePause(st);
    EXPECT_EQ(channelIsActive(going), ChannelState::Paused);
    EXPECT_EQ(channelIsActive(st.musicStreamNext), ChannelState::Playing);
    EXPECT_EQ(transportState(st), TransportState::Paused);
    togglePause(st);
    EXPECT_EQ(channelIsActive(going), ChannelState::Playing);
}

TEST_F(Crossfade, TheVolumeToggleGoesLowThenHighAndWithTheAudioOffANextPressStillCounts) {
    addPlaylists({sine("a.flac", 5.0)});
    transition();
    st.volume = 0.3f;
    toggleVolumeLevel(st);
    EXPECT_EQ(std::tie(st.volume, st.volumeToggleState), std::tuple(st.lowVolume, 1));
    advance(1000);
    EXPECT_NEAR(volumeOf(audibleHandle(st)), (0.5f + 0.1f) / 2, 1e-3);
    st.volume = 0.2f;
    applyVolume(st); // a change while low redefines the low level
    EXPECT_EQ(st.lowVolume, 0.2f);
    toggleVolumeLevel(st);
    EXPECT_EQ(st.volume, st.highVolume);

    freeAudio(st);
    EXPECT_EQ(transportState(st), TransportState::AudioOff);
    std::size_t rows = st.songHistory.size();
    int plays = st.playlists[0].songs[0].playCount;
    startTransition(st);
    EXPECT_EQ(st.songHistory.size(), rows + 1);
    EXPECT_EQ(st.playlists[0].songs[0].playCount, plays + 1);
    EXPECT_EQ(transportState(st), TransportState::AudioOff);
    ASSERT_TRUE(engineInit(AudioOutput::Null)); // for the fixture's tear-down
}

} // namespace
