#include "display/pathLine.h"

#include "core/playerState.h"

#include <gtest/gtest.h>

class PathLine : public testing::Test {
  protected:
    PathLine() {
        st.directoryPaths = {"/music", "C:\\Music"};
        st.totalSongCount = 1;
        st.stationMode = 0;
    }
    PlayerState st;
};

TEST_F(PathLine, ShowsTheFamilyAndFoldersBelowTheRootAllOutsideTheRootsOrAStationsNameAndGenre) {
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

    // A file in the root or an empty library shows only the family.
    st.lcdTitle = "before";
    EXPECT_EQ(displayPath(st, "/music/a.mp3", musicTypeMp3), "MP3");
    st.totalSongCount = 0;
    EXPECT_EQ(displayPath(st, "/music/Rock/a.mp3", 7), "Unknown Music Type");
    EXPECT_EQ(st.lcdTitle, "before");
    // Without roots the headline asks for them, whatever the library holds.
    st.directoryPaths.clear();
    st.totalSongCount = 10;
    EXPECT_EQ(displayPath(st, "/music/Rock/a.mp3", musicTypeMp3),
              "Marble Tunnel Radio: Add your music directories");
    EXPECT_EQ(st.lcdTitle, "Marble Tunnel Radio: No Music Directory");

    // A station shows its name and genre but no folders.
    st.directoryPaths = {"/music"};
    st.onStation = true;
    st.stationMode = 4;
    st.stationName = "Jazz FM";
    st.stationGenre = "Jazz";
    st.currentFolderTitle = "kept";
    EXPECT_EQ(displayPath(st, "http://radio.example/live", musicTypeStation), "Jazz FM > Jazz");
    EXPECT_EQ(st.lcdTitle, "Jazz FM");
    EXPECT_EQ(st.currentFolderTitle, "kept");
}
