#include "radio/walks.h"

#include "core/mouse.h"
#include "core/transport.h"
#include "core/windowEvents.h"
#include "display/screen.h"
#include "playback/radioFixture.h"
#include "radio/segments.h"
#include "support/recordingCanvas.h"

#include <filesystem>
#include <tuple>

namespace {

class Walks : public Radio {
  protected:
    void SetUp() override {
        Radio::SetUp();
        addPlaylists({sine("a.flac", 30.0), sine("b.flac", 30.0)});
        // Stations as records: their loads fail cleanly until internet streams exist.
        st.radioStations = {RadioStation{"One", "http://127.0.0.1:9/one", 0, 0},
                            RadioStation{"Two", "http://127.0.0.1:9/two", 0, 0}};
        recountLibrary(st);
    }
    // stationMode, builtInStation, onStation, currentStation and modePlaylist.
    using Mode = std::tuple<int, int, bool, int, int>;
    // Runs one step of the walk quietly and checks that a transition came with it.
    void step(void (*walk)(PlayerState&)) {
        std::size_t rows = st.songHistory.size();
        logOf([&] { walk(st); });
        advance(200);
        EXPECT_EQ(st.songHistory.size(), rows + 1) << "every step ends in a transition";
    }
};

TEST_F(Walks, NextGoesRoundRadioTopFortyUndiscoveredStationsPlaylistsAndPreviousGoesBack) {
    const Mode circle[] = {
        {2, 1, false, 0, 0}, {3, 2, false, 0, 0}, {4, 0, true, 0, 0},  {4, 0, true, 1, 0},
        {0, 0, false, 2, 0}, {0, 0, false, 2, 1}, {1, 0, false, 2, 0},
    };
    for (const Mode& expected : circle) {
        step(nextPlaylist);
        // In modes 0 and 1 the station is not what the mode plays.
        int station = st.stationMode <= 1 ? std::get<3>(expected) : st.currentStation;
        EXPECT_EQ(Mode(st.stationMode, st.builtInStation, st.onStation, station, st.modePlaylist),
                  expected);
    }
    // The mode and, in modes 0 and 4, the playlist or the station.
    const std::pair<int, int> back[] = {{0, 1}, {0, 0}, {4, 1}, {4, 0}, {3, -1}, {2, -1}, {1, -1}};
    for (auto [mode, index] : back) {
        step(previousPlaylist);
        int now = mode == 0 ? st.modePlaylist : mode == 4 ? st.currentStation : -1;
        EXPECT_EQ(std::tuple(st.stationMode, now), std::tuple(mode, index));
    }
    EXPECT_EQ(st.builtInStation, 0);
}

TEST_F(Walks, BackAndForwardAgainAddsNoRowsAndAGoneRowOrAnEmptySearchPlaysANewSelection) {
    st.rawRadio = 0;
    for (int i = 0; i < 3; ++i)
        transition();
    ASSERT_EQ(st.historyEnd, 3);
    std::vector<HistoryEntry> rows = st.songHistory;
    for (int i = 0; i < 2; ++i) {
        previousSong(st);
        advance(200);
    }
    EXPECT_EQ(std::tie(st.historyPosition, st.historyNavigation, st.playingPlaylist),
              std::tuple(0, 1, rows[0].plistIndex));
    transition();
    transition();
    EXPECT_EQ(std::tie(st.historyNavigation, st.historyPosition), std::tuple(0, 2));
    EXPECT_EQ(st.songHistory, rows);
    st.historyPosition = 0;
    previousSong(st); // at the first row: nothing
    EXPECT_EQ(st.historyNavigation, 0);

    st.songHistory.push_back(HistoryEntry{1, 0, 9}); // a playlist that is gone
    st.historyEnd = static_cast<int>(st.songHistory.size());
    st.historyPosition = st.historyEnd - 1;
    st.historyNavigation = 2;
    transition();
    EXPECT_EQ(std::tuple(st.historyNavigation, st.songHistory.size()), std::tuple(0, 5u));
    EXPECT_LT(st.songHistory.back().plistIndex, 2);
    EXPECT_GT(peak(advance(100)), 0.0f);

    st.searchActive = true; // a page without results
    st.searchRow = 0;
    transition();
    EXPECT_EQ(st.songHistory.size(), 6u);
}

TEST_F(Walks, AWindowWithoutPaintsStillMovesOnFromTheTick) {
    st.rawRadio = 0;
    transition();
    nullOutputPull(44100 * 6); // past the first five seconds, at 6.2 s
    st.segmentEnd = 7.0;       // due from just under a second before
    st.paintedSinceTick = true;
    onTimer(st, 1); // a repaint came since the last tick: the repaint decides
    EXPECT_EQ(st.songHistory.size(), 1u);
    onTimer(st, 1); // none came: the tick runs the end test itself
    EXPECT_EQ(st.songHistory.size(), 2u);
}

// A song file deleted after the scan fails its load with its line; in a radio mode the radio moves
// on 3 s later, as after a station that fails, while one playlist stays silent until the user acts.
TEST_F(Walks, ASongDeletedAfterTheScanIsLeftAfterThreeSecondsInTheRadioModesOnly) {
    st.rawRadio = 0;
    const std::string gone = st.playlists[0].songs[0].songPath;
    std::filesystem::remove(gone);
    auto tickMovesOn = [&] {
        return logOf([&] { onTimer(st, 1); }).find("Loading") != std::string::npos;
    };
    for (int mode : {stationModeRadio, stationModePlaylist}) {
        SCOPED_TRACE(mode);
        st.stationMode = mode;
        std::string log = logOf([&] { transition(0); });
        EXPECT_NE(log.find("Error creating musicStream"), std::string::npos) << log;
        const bool movesOn = mode == stationModeRadio;
        const std::string line = "Song " + gone + " did not load: the radio moves on in 3 seconds.";
        EXPECT_EQ(log.find(line) != std::string::npos, movesOn) << log;
        advance(2700); // 2.9 s after the load
        EXPECT_FALSE(tickMovesOn());
        advance(100);
        EXPECT_EQ(tickMovesOn(), movesOn);
        advance(10000);
        EXPECT_TRUE(movesOn || !tickMovesOn());
    }
}

} // namespace

// The list page: built-in stations, stations, playlists, each row played through a transition,
// also when it already plays.
TEST_F(Walks, ListRowsChooseTheModeTheStationOrThePlaylistAndTransition) {
    st.listEntries.assign(7, "row");
    st.stationCount = 2;
    st.listPage = 0;
    RecordingCanvas canvas;
    paintScreen(canvas, st);
    const std::tuple<int, int, bool> rows[] = {{0, 1, false}, {1, 2, false}, {2, 3, false},
                                               {4, 4, true},  {5, 0, false}, {5, 0, false}};
    for (auto [cell, mode, onStation] : rows) {
        const Box box = st.cellRects[cell];
        std::size_t before = st.songHistory.size();
        logOf([&] { onLeftPress(st, box.x + 1, box.y + 1); });
        advance(200);
        EXPECT_EQ(st.songHistory.size(), before + 1) << cell;
        EXPECT_EQ(st.stationMode, mode) << cell;
        EXPECT_EQ(st.onStation, onStation) << cell;
    }
    EXPECT_EQ(st.currentStation, 1);
    EXPECT_EQ(st.modePlaylist, 0);
}

// A module stops at its end up to a tick before the end test moves on; a seek back in that moment
// must not leave it stopped at a position that the end test never takes for an end.
TEST_F(Walks, ASeekIntoAModuleThatHasJustEndedPlaysItAgain) {
    addPlaylists({module("m.mod")});
    transition(2);
    refreshPosition(st);
    nullOutputPull(44100 * 8); // past its 7.68 s
    ASSERT_EQ(int(channelIsActive(st.activeHandle)), int(ChannelState::Stopped));
    seekActiveSong(st, 2.0);
    advance(100);
    EXPECT_EQ(int(channelIsActive(st.activeHandle)), int(ChannelState::Playing));
}
