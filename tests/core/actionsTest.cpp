#include "core/actions.h"

#include "core/playerState.h"
#include "core/windowEvents.h"
#include "input/actionSteps.h"
#include "support/output.h"
#include "support/recordingPlatform.h"

#include <gtest/gtest.h>

namespace {

// A player with one song on show and one station, on no audio.
class Actions : public testing::Test {
  protected:
    Actions() {
        st.playlists.push_back(Playlist{"A", {Song{"/m/a.mp3", 1, 0, 1, musicTypeMp3}}, 1});
        st.radioStations = {RadioStation{"S", "http://127.0.0.1:9/", 1, 1}};
        st.totalSongCount = 1;
    }
    Song& song() { return st.playlists[0].songs[0]; }
    PlayerState st;
    RecordingPlatform platform;
};

TEST_F(Actions, VolumeStepsClampExactlyAndAHeldKeyStepsOnceUntilItsChordIsLetGo) {
    const std::tuple<float, int, float> steps[] = {{0.98f, action::volumeUp, 1.0f},
                                                   {0.03f, action::volumeDown, 0.0f},
                                                   {0.5f, action::volumeUp, 0.55f}};
    for (auto [from, id, to] : steps) {
        st.volume = from;
        st.volumeUpLatch = st.volumeDownLatch = false;
        runKeyboardAction(st, id);
        EXPECT_EQ(st.volume, to);
    }
    runKeyboardAction(st, action::volumeUp); // the latch holds
    EXPECT_EQ(st.volume, 0.55f);
    runControllerAction(st, action::volumeDown); // a controller has no latch, and steps 0.01
    EXPECT_EQ(st.volume, static_cast<float>(0.55f - 0.01));

    platform.keysDown = {vkControl, vkOemPlus};
    onTimer(st, host::timerVolumeLatch);
    EXPECT_TRUE(st.volumeUpLatch);
    platform.keysDown = {vkOemPlus};
    onTimer(st, host::timerVolumeLatch);
    EXPECT_FALSE(st.volumeUpLatch);
}

TEST_F(Actions, FavouriteStepsCountTheSongAndOnlyTheControllerCountsAStation) {
    runKeyboardAction(st, action::favoriteDown);
    EXPECT_EQ(std::tie(song().favoriteCount, song().isFavorite), std::tuple(0, 0));
    runKeyboardAction(st, action::favoriteDown); // stays at 0
    EXPECT_EQ(std::tie(song().favoriteCount, song().isFavorite), std::tuple(0, 0));
    runKeyboardAction(st, action::favoriteUp);
    EXPECT_EQ(std::tie(song().favoriteCount, song().isFavorite), std::tuple(1, 1));

    st.onStation = true;
    RadioStation& station = st.radioStations[0];
    runKeyboardAction(st, action::favoriteDown);
    EXPECT_EQ(station.favoriteCount, 1);
    runControllerAction(st, action::favoriteDown);
    EXPECT_EQ(std::tie(station.favoriteCount, station.favorite), std::tuple(0, 0));
    EXPECT_TRUE(st.buttonsDirty);
    EXPECT_EQ(song().favoriteCount, 1);
}

TEST_F(Actions, RoutesDifferForTheVolumeToggleAndQuitHomeAndSpareRowsAsTheTableSays) {
    logOf([&] { runKeyboardAction(st, action::volumeToggle); });
    EXPECT_EQ(st.volumeToggleState, volumeToggleNone);
    runControllerAction(st, action::volumeToggle);
    EXPECT_NE(st.volumeToggleState, volumeToggleNone);

    // Home: the search closes, then the front page, then the radio's list, then the radio.
    st.searchActive = true;
    st.searchText = "abc";
    st.stationMode = stationModePlaylist;
    const std::tuple<bool, int, int> homes[] = {
        {false, -1, 0}, {false, -1, 1}, {false, 0, 1}, {false, -1, 1}};
    for (auto [search, page, mode] : homes) {
        runKeyboardAction(st, action::home);
        EXPECT_EQ(std::tie(st.searchActive, st.listPage, st.stationMode),
                  std::tie(search, page, mode));
    }
    EXPECT_TRUE(st.searchText.empty());

    for (int id : {action::controllerEnable, 16, 29, 30, -1})
        runKeyboardAction(st, id);
    EXPECT_EQ(platform.closeRequests, 0);
    runKeyboardAction(st, action::quit);
    runControllerAction(st, action::quit);
    EXPECT_EQ(platform.closeRequests, 2);
}

TEST_F(Actions, EveryRowIsRegisteredWithItsModifiersAnEmptyOneToo) {
    st.hotkeyTable[0] = {78, true, true, false, -1, -1};
    st.hotkeyTable[5] = {65, false, false, true, -1, -1};
    st.hotkeyTable.resize(31); // a row past the 30th is kept, never registered
    registerHotkeys(st);
    ASSERT_EQ(platform.hotkeys.size(), 30u);
    EXPECT_EQ(platform.hotkeys[0], (RecordingPlatform::Hotkey{0, 3, 78}));
    EXPECT_EQ(platform.hotkeys[5], (RecordingPlatform::Hotkey{5, 4, 65}));
    EXPECT_EQ(platform.hotkeys[29], (RecordingPlatform::Hotkey{29, 0, 0}));
}

} // namespace
