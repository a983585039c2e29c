#include "core/windowEvents.h"
#include "playback/crossfade.h"
#include "radio/walks.h"
#include "radioFixture.h"

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
    struct Mode {
        int stationMode, builtInStation;
        bool onStation;
        int currentStation, modePlaylist;
        bool operator==(const Mode&) const = default;
    };
    Mode mode() const {
        return {st.stationMode, st.builtInStation, st.onStation, st.currentStation,
                st.modePlaylist};
    }
    // Runs one step of the walk quietly and counts that a transition came with it.
    void step(void (*walk)(PlayerState&)) {
        std::size_t rows = st.songHistory.size();
        testing::internal::CaptureStdout();
        walk(st);
        testing::internal::GetCapturedStdout();
        advance(200);
        EXPECT_EQ(st.songHistory.size(), rows + 1) << "every step ends in a transition";
    }
};

TEST_F(Walks, NextGoesRoundRadioTopFortyUndiscoveredEachStationEachPlaylistAndBack) {
    std::vector<Mode> circle = {
        {2, 1, false, 0, 0}, {3, 2, false, 0, 0}, {4, 0, true, 0, 0}, {4, 0, true, 1, 0},
        {0, 0, false, 2, 0}, {0, 0, false, 2, 1}, {1, 0, false, 2, 0},
    };
    for (const Mode& expected : circle) {
        step(nextPlaylist);
        Mode now = mode();
        if (now.stationMode == 0 || now.stationMode == 1) now.currentStation = expected.currentStation;
        EXPECT_EQ(now, expected) << "mode " << expected.stationMode;
    }
}

TEST_F(Walks, PreviousGoesRoundTheOtherWay) {
    std::vector<int> modes = {0, 0, 4, 4, 3, 2, 1};
    std::vector<int> playlistsOrStations = {1, 0, 1, 0, -1, -1, -1};
    for (std::size_t i = 0; i < modes.size(); ++i) {
        step(previousPlaylist);
        EXPECT_EQ(st.stationMode, modes[i]) << i;
        if (modes[i] == 0) {
            EXPECT_EQ(st.modePlaylist, playlistsOrStations[i]);
        }
        if (modes[i] == 4) {
            EXPECT_EQ(st.currentStation, playlistsOrStations[i]);
        }
    }
    EXPECT_EQ(st.builtInStation, 0);
}

TEST_F(Walks, BackTwoRowsAndForwardAgainEndsTheWalkWithoutNewRows) {
    st.rawRadio = 0;
    for (int i = 0; i < 3; ++i) {
        startTransition(st);
        advance(200);
    }
    ASSERT_EQ(st.historyEnd, 3);
    std::vector<HistoryEntry> rows = st.songHistory;
    previousSong(st);
    advance(200);
    previousSong(st);
    advance(200);
    EXPECT_EQ(st.historyPosition, 0);
    EXPECT_EQ(st.historyNavigation, 1);
    EXPECT_EQ(st.playingPlaylist, rows[0].plistIndex);
    startTransition(st);
    advance(200);
    startTransition(st);
    advance(200);
    EXPECT_EQ(st.historyNavigation, 0);
    EXPECT_EQ(st.historyPosition, 2);
    EXPECT_EQ(st.songHistory, rows);
    st.historyPosition = 0;
    previousSong(st);  // at the first row: nothing
    EXPECT_EQ(st.historyNavigation, 0);
}

TEST_F(Walks, AnEmptySearchPageOrAGoneHistoryRowPlaysANewSelection) {
    st.rawRadio = 0;
    st.searchActive = true;
    st.searchRow = 0;
    startTransition(st);
    advance(200);
    EXPECT_EQ(st.songHistory.size(), 1u);
    st.searchActive = false;

    st.songHistory.push_back(HistoryEntry{1, 0, 9});  // a playlist that is gone
    st.historyEnd = static_cast<int>(st.songHistory.size());
    st.historyPosition = st.historyEnd - 1;
    st.historyNavigation = 2;
    startTransition(st);
    advance(200);
    EXPECT_EQ(st.historyNavigation, 0);
    EXPECT_EQ(st.songHistory.size(), 3u);
    EXPECT_LT(st.songHistory.back().plistIndex, 2);
    EXPECT_GT(peak(advance(100)), 0.0f);
}

TEST_F(Walks, AWindowWithoutPaintsStillMovesOnFromTheTick) {
    st.rawRadio = 0;
    startTransition(st);
    advance(200);
    nullOutputPull(44100 * 6);  // past the first five seconds, at 6.2 s
    st.segmentEnd = 7.0;        // due from just under a second before
    st.paintedSinceTick = true;
    onTimer(st, 1);  // a repaint came since the last tick: the repaint decides
    EXPECT_EQ(st.songHistory.size(), 1u);
    onTimer(st, 1);  // none came: the tick runs the end test itself
    EXPECT_EQ(st.songHistory.size(), 2u);
}

} // namespace
