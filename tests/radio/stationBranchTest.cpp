#include "radio/selectionTestSupport.h"

#include <gtest/gtest.h>

using namespace selectionTest;

namespace {

// Once the run is past its first draw, these always draw the Radio family.
constexpr Ratios radioOnly{0, 0, 0, 0, 50};

} // namespace

TEST(StationDraw, StationsAndRadioPlaylistsWeighByTheirFavouriteCount) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMp3), song(musicTypeMp3)}, /*iRadioMode=*/1);
    st.playlists[0].songs[1].songPath = "p0s1.MP3"; // typed by the stored, case-kept extension
    addPlaylist(st, {song(musicTypeMp3)});
    addStations(st, {0, 2, -1});
    prepare(st, radioOnly, 41);
    st.historyDepth = -1; // the repeat window does not apply to radio playlists
    constexpr int draws = 20'000;
    std::array<int, 5> seen{}; // the three stations, then the two songs of the radio playlist
    for (int i = 0; i < draws; ++i) {
        SongRef ref = selectNextSong(st);
        if (st.onStation) {
            ++seen.at(ref.plistIndex);
            continue;
        }
        ASSERT_EQ(ref.plistIndex, 0);
        ++seen.at(3 + ref.songIndex);
        EXPECT_EQ(st.currentMusicType, ref.songIndex == 0 ? musicTypeMp3 : musicTypeUnknown);
        EXPECT_EQ(st.songHistory.back(), (HistoryEntry{st.currentMusicType, ref.songIndex, 0}));
    }
    EXPECT_NEAR(seen[0] / double(draws), 0.2, 0.015);
    EXPECT_NEAR(seen[1] / double(draws), 0.6, 0.015);
    EXPECT_EQ(seen[2], 0); // a negative count stands no times
    EXPECT_NEAR(seen[3] / double(draws), 0.1, 0.015);
    EXPECT_NEAR(seen[4] / double(draws), 0.1, 0.015);
}

TEST(StationDraw, AStationIsPlayedAndRecordedByItsIndexEvenWithShuffleOff) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMp3), song(musicTypeMp3)});
    addStations(st, {-1, 0});
    prepare(st, radioOnly, 42);
    st.currentMusicType = musicTypeMp3;
    st.shuffle = 0;
    st.modeSongIndex = 0;
    EXPECT_EQ(selectNextSong(st), (SongRef{1, 0}));
    EXPECT_TRUE(st.onStation);
    EXPECT_EQ(st.currentStation, 1);
    EXPECT_EQ(st.currentMusicType, musicTypeStation);
    EXPECT_EQ(st.previousMusicType, musicTypeStation); // nothing was picked before it
    EXPECT_EQ(st.songHistory, (std::vector<HistoryEntry>{{musicTypeStation, 1, 1}}));
    EXPECT_EQ(st.modeSongIndex, 0);

    selectNextSong(st);
    EXPECT_EQ(st.previousMusicType, musicTypeStation);
}

TEST(StationDraw, NothingToTuneInGivesTheZeroReferenceAndRecordsNothing) {
    struct Case {
        const char* why;
        bool emptyRadioPlaylist;
        int stationMode;
    };
    const Case cases[] = {{"an empty radio playlist drawn", true, 1},
                          {"the same left on from the list page", true, 4},
                          {"no entry that stands in the draw", false, 1}};
    for (const Case& c : cases) {
        PlayerState st;
        addPlaylist(st, {song(musicTypeMp3)});
        if (c.emptyRadioPlaylist)
            addPlaylist(st, {}, /*iRadioMode=*/1);
        addStations(st, {-1, -3});
        prepare(st, radioOnly, 44);
        st.stationMode = c.stationMode;
        st.onStation = c.stationMode == 4;
        st.currentStation = 3; // the radio playlist
        EXPECT_EQ(selectNextSong(st), (SongRef{0, 0})) << c.why;
        EXPECT_FALSE(st.onStation) << c.why; // (0, 0) names a song, not station 0
        EXPECT_TRUE(st.songHistory.empty()) << c.why;
    }
}

TEST(StationMode, StationModeFourStaysOnItsStationOrWithoutStationsPlaysASong) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMidi)});
    addStations(st, {5, 5, 0});
    prepare(st, {50, 0, 0, 0, 0}, 46);
    st.stationMode = 4;
    st.currentStation = 2;
    st.onStation = true;
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(selectNextSong(st), (SongRef{2, 0}));

    st.radioStations.clear();
    prepare(st, {50, 0, 0, 0, 0}, 47);
    EXPECT_EQ(selectNextSong(st), (SongRef{0, 0}));
    EXPECT_FALSE(st.onStation);
    EXPECT_EQ(st.songHistory.back(), (HistoryEntry{musicTypeMidi, 0, 0}));
}
