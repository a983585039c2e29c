#include "radio/selectionTestSupport.h"

#include <array>
#include <gtest/gtest.h>

using namespace selectionTest;

namespace {

// Ratios that always draw the Radio family once the run is past its first draw.
void radioOnly(PlayerState& st, unsigned seed) {
    countLibrary(st);
    setRatios(st, 0, 0, 0, 0, 50);
    seedAll(st, seed);
}

} // namespace

TEST(StationDraw, StationsAndRadioPlaylistsWeighByTheirFavouriteCount) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMp3)}, /*iRadioMode=*/1);
    addPlaylist(st, {song(musicTypeMp3)});
    addStations(st, {0, 2, -1});
    radioOnly(st, 41);
    constexpr int draws = 20'000;
    std::array<int, 4> seen{}; // the three stations, then the radio playlist
    for (int i = 0; i < draws; ++i) {
        SongRef ref = selectNextSong(st);
        ++seen.at(st.onStation ? ref.plistIndex : 3);
        if (!st.onStation) {
            EXPECT_EQ(ref, (SongRef{0, 0}));
        }
    }
    EXPECT_NEAR(seen[0] / double(draws), 0.2, 0.015);
    EXPECT_NEAR(seen[1] / double(draws), 0.6, 0.015);
    EXPECT_EQ(seen[2], 0); // a negative count stands no times
    EXPECT_NEAR(seen[3] / double(draws), 0.2, 0.015);
}

TEST(StationDraw, AStationIsPlayedAndRecordedByItsIndex) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMp3)});
    addStations(st, {-1, 0});
    radioOnly(st, 42);
    st.currentMusicType = musicTypeMp3;
    EXPECT_EQ(selectNextSong(st), (SongRef{1, 0}));
    EXPECT_TRUE(st.onStation);
    EXPECT_EQ(st.currentStation, 1);
    EXPECT_EQ(st.currentMusicType, musicTypeStation);
    EXPECT_EQ(st.previousMusicType, musicTypeStation); // nothing was picked before it
    EXPECT_EQ(st.songHistory, (std::vector<HistoryEntry>{{musicTypeStation, 1, 1}}));
    EXPECT_EQ(st.historyPosition, 0);
    EXPECT_EQ(st.historyEnd, 1);

    selectNextSong(st);
    EXPECT_EQ(st.previousMusicType, musicTypeStation);
}

TEST(StationDraw, ARadioPlaylistPlaysAnyOfItsSongsTypedByTheStoredExtension) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMp3)});
    addPlaylist(st, {song(musicTypeMp3), song(musicTypeMp3)}, /*iRadioMode=*/1);
    st.playlists[1].songs[1].songPath = "p1s1.MP3";
    addStations(st, {-1});
    radioOnly(st, 43);
    st.historyDepth = -1; // the window does not apply to radio playlists
    st.currentMusicType = musicTypeTracker;
    std::array<int, 2> seen{};
    for (int i = 0; i < 200; ++i) {
        SongRef ref = selectNextSong(st);
        ASSERT_EQ(ref.plistIndex, 1);
        ++seen.at(ref.songIndex);
        EXPECT_FALSE(st.onStation);
        EXPECT_EQ(st.currentMusicType, ref.songIndex == 0 ? musicTypeMp3 : musicTypeUnknown);
        EXPECT_EQ(st.songHistory.back(), (HistoryEntry{st.currentMusicType, ref.songIndex, 1}));
    }
    EXPECT_GT(seen[0], 0);
    EXPECT_GT(seen[1], 0);
}

TEST(StationDraw, ARadioPlaylistWithoutSongsGivesTheZeroReference) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMp3)});
    addPlaylist(st, {}, /*iRadioMode=*/1);
    addStations(st, {-1});
    radioOnly(st, 44);
    EXPECT_EQ(selectNextSong(st), (SongRef{0, 0}));
    EXPECT_FALSE(st.onStation);

    st.stationMode = 4; // left on it from the list page
    st.currentStation = 2;
    st.onStation = true;
    EXPECT_EQ(selectNextSong(st), (SongRef{0, 0}));
    EXPECT_FALSE(st.onStation); // (0, 0) names a song, not station 0
    EXPECT_TRUE(st.songHistory.empty());
}

TEST(StationDraw, NoEntryInTheStationListGivesTheZeroReference) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMp3)});
    addStations(st, {-1, -3});
    radioOnly(st, 45);
    EXPECT_EQ(selectNextSong(st), (SongRef{0, 0}));
    EXPECT_TRUE(st.songHistory.empty());
}

TEST(StationMode, AStationModeStaysOnItsStation) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMidi)});
    addStations(st, {5, 5, 0});
    countLibrary(st);
    setRatios(st, 50, 0, 0, 0, 0);
    seedAll(st, 46);
    st.stationMode = 4;
    st.currentStation = 2;
    st.onStation = true;
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(selectNextSong(st), (SongRef{2, 0}));
}

TEST(StationMode, WithoutStationsItFallsBackToASong) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMidi)});
    countLibrary(st);
    setRatios(st, 50, 0, 0, 0, 0);
    seedAll(st, 47);
    st.stationMode = 4;
    st.onStation = true;
    EXPECT_EQ(selectNextSong(st), (SongRef{0, 0}));
    EXPECT_FALSE(st.onStation);
    EXPECT_EQ(st.songHistory, (std::vector<HistoryEntry>{{musicTypeMidi, 0, 0}}));
}

TEST(StationMode, ShuffleOffStillTunesInAtTheRadioRate) {
    PlayerState st;
    addPlaylist(st, {song(musicTypeMidi), song(musicTypeMidi)});
    addStations(st, {0});
    radioOnly(st, 48);
    st.shuffle = 0;
    st.modeSongIndex = 0;
    EXPECT_EQ(selectNextSong(st), (SongRef{0, 0}));
    EXPECT_TRUE(st.onStation);
    EXPECT_EQ(st.modeSongIndex, 0);
}
