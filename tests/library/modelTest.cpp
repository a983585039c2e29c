#include "library/model.h"

#include "core/playerState.h"
#include "radio/selectionTestSupport.h"
#include "util/paths.h"

#include <gtest/gtest.h>

using selectionTest::addPlaylist;
using selectionTest::addStations;
using selectionTest::Ratios;
using selectionTest::ratiosOf;
using selectionTest::song;

TEST(Extensions, ExtensionOfStartsAtTheLastDotOfTheWholePath) {
    EXPECT_EQ(extensionOf("/music/a.b/song.Mid"), ".Mid");
    EXPECT_EQ(extensionOf("/music/a.b/song"), ".b/song");
    EXPECT_EQ(extensionOf("/music/song"), "");
    EXPECT_EQ(extensionOf(""), "");
}

TEST(Recount, EmptyFamiliesHaveTheirRatiosSilencedForGood) {
    PlayerState st;
    // A favourite counts by its count, not its flag.
    addPlaylist(st, {song(musicTypeMidi), song(musicTypeMidi, 1, 0)});
    recountLibrary(st);
    EXPECT_EQ(st.midiSongCount, 2);
    EXPECT_EQ(st.favoriteSongCount, 0);
    EXPECT_EQ(st.playlistCount, 1);
    EXPECT_EQ(ratiosOf(st), (Ratios{50, 0, 0, 0, 0}));

    // A song of no known type is no song, yet its count makes it a favourite.
    addPlaylist(st,
                {song(musicTypeMp3), song(musicTypeTracker, 0, 3), song(musicTypeUnknown, 0, 2)});
    addStations(st, {0});
    recountLibrary(st);
    EXPECT_EQ(st.mp3SongCount, 1);
    EXPECT_EQ(st.totalSongCount, 4);
    EXPECT_EQ(st.favoriteSongCount, 2);
    EXPECT_EQ(st.stationCount, 1);
    EXPECT_EQ(ratiosOf(st), (Ratios{50, 0, 0, 0, 0}));
}

TEST(Titles, WordsStartAfterUnderscoresAndDotsOrFileCapitalsAndStopAt254Bytes) {
    EXPECT_EQ(titleCaseFolder("my_old.songs"), "My Old Songs");
    EXPECT_EQ(titleCaseFolder("my songs"), "My songs");
    EXPECT_EQ(titleCaseFolder("ROCK_x"), "ROCK X");
    EXPECT_EQ(titleCaseFolder(""), "");
    EXPECT_EQ(titleFromPath("/music/rock/my_oldSong.mid"), "My Old Song");
    EXPECT_EQ(titleFromPath("C:\\Music\\abc.def.mid"), "Abc.def");
    EXPECT_EQ(titleFromPath("/music/a.b/noExtension"), "");
    EXPECT_EQ(titleFromPath("/music/.mid"), "");
    EXPECT_EQ(titleFromPath("\xc3\xa9t\xc3\xa9.mp3"), "\xc3\xa9t\xc3\xa9");
    EXPECT_EQ(titleFromPath(std::string(300, 'a') + ".mid").size(), 253u);
    // A capital written at 252 brings its blank along.
    std::string title = titleFromPath("aa" + std::string(300, 'B') + ".mid");
    EXPECT_EQ(title.size(), 254u);
    EXPECT_EQ(title.substr(250), " B B");
}

class PathLine : public testing::Test {
  protected:
    PathLine() {
        st.directoryPaths = {"/music", "C:\\Music"};
        st.totalSongCount = 1;
        st.stationMode = 0;
    }
    PlayerState st;
};

TEST_F(PathLine, ShowsTheFamilyAndTheTitleCasedFoldersBelowTheRootOrAllOutsideTheRoots) {
    EXPECT_EQ(displayPath(st, "/music/Rock/old_hits/a.mp3", musicTypeMp3), "MP3 > Rock > Old Hits");
    EXPECT_EQ(st.currentFolderTitle, "Rock");
    EXPECT_EQ(st.lcdTitle, "Rock");
    EXPECT_EQ(displayPath(st, "C:\\Music\\Rock\\old_hits\\a.mp3", musicTypeMp3),
              "MP3 > Rock > Old Hits");
    EXPECT_EQ(displayPath(st, "/home/ann/rock/a.mid", musicTypeMidi), "MIDI > Home > Ann > Rock");
    EXPECT_EQ(displayPath(st, "D:\\tunes\\a.xm", musicTypeTracker), "Tracker > D: > Tunes");
    EXPECT_EQ(st.currentFolderTitle, "D:");

    // The headline is cut to 255 bytes, the folder title is not.
    displayPath(st, "/music/" + std::string(400, 'x') + "/a.mp3", musicTypeMp3);
    EXPECT_EQ(st.lcdTitle.size(), 255u);
    EXPECT_EQ(st.currentFolderTitle.size(), 400u);
}

TEST_F(PathLine, WithoutRootsTheHeadlineAsksForThemWhateverTheLibraryHolds) {
    st.directoryPaths.clear();
    st.totalSongCount = 10;
    EXPECT_EQ(displayPath(st, "/music/Rock/a.mp3", musicTypeMp3),
              "Marble Tunnel Radio: Add your music directories");
    EXPECT_EQ(st.lcdTitle, "Marble Tunnel Radio: No Music Directory");
}

TEST_F(PathLine, AnEmptyLibraryOrAFileInTheRootShowsOnlyTheFamily) {
    st.lcdTitle = "before";
    EXPECT_EQ(displayPath(st, "/music/a.mp3", musicTypeMp3), "MP3");
    st.totalSongCount = 0;
    EXPECT_EQ(displayPath(st, "/music/Rock/a.mp3", 7), "Unknown Music Type");
    EXPECT_EQ(st.lcdTitle, "before");
}

TEST_F(PathLine, AStationShowsItsNameAndGenreButNoFolders) {
    st.onStation = true;
    st.stationMode = 4;
    st.stationName = "Jazz FM";
    st.stationGenre = "Jazz";
    st.currentFolderTitle = "kept";
    EXPECT_EQ(displayPath(st, "http://radio.example/live", musicTypeStation), "Jazz FM > Jazz");
    EXPECT_EQ(st.lcdTitle, "Jazz FM");
    EXPECT_EQ(st.currentFolderTitle, "kept");
}

TEST(History, AnAppendedRowIsTheOneThatPlays) {
    PlayerState st;
    appendHistory(st, musicTypeMidi, 4, 2);
    st.historyPosition = 0;
    appendHistory(st, musicTypeStation, 1, 1);
    EXPECT_EQ(st.songHistory, (std::vector<HistoryEntry>{{0, 4, 2}, {3, 1, 1}}));
    EXPECT_EQ(st.historyPosition, 1);
    EXPECT_EQ(st.historyEnd, 2);
}
