#include "library/model.h"

#include "core/playerState.h"
#include "radio/selectionTestSupport.h"

#include <gtest/gtest.h>
#include <tuple>

using namespace selectionTest;

TEST(Recount, EmptyFamiliesHaveTheirRatiosSilencedForGood) {
    PlayerState st;
    // A favourite counts by its count, not its flag.
    addPlaylist(st, {song(musicTypeMidi), song(musicTypeMidi, 1, 0)});
    recountLibrary(st);
    EXPECT_EQ(std::tie(st.midiSongCount, st.favoriteSongCount, st.playlistCount),
              std::tuple(2, 0, 1));
    EXPECT_EQ(ratiosOf(st), (Ratios{50, 0, 0, 0, 0}));

    // A song of no known type is no song, yet its count makes it a favourite.
    addPlaylist(st,
                {song(musicTypeMp3), song(musicTypeTracker, 0, 3), song(musicTypeUnknown, 0, 2)});
    addStations(st, {0});
    recountLibrary(st);
    EXPECT_EQ(std::tie(st.mp3SongCount, st.totalSongCount, st.favoriteSongCount, st.stationCount),
              std::tuple(1, 4, 2, 1));
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
