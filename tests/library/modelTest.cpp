#include "library/model.h"

#include "core/playerState.h"

#include <gtest/gtest.h>

namespace {

Song songOf(MusicType type, int favoriteCount = 0, int isFavorite = 0) {
    Song song;
    song.songPath = "/music/album/song";
    song.musicType = type;
    song.favoriteCount = favoriteCount;
    song.isFavorite = isFavorite;
    return song;
}

void addPlaylist(PlayerState& st, std::vector<Song> songs) {
    Playlist playlist;
    playlist.albumName = "album";
    playlist.songCount = static_cast<int>(songs.size());
    playlist.songs = std::move(songs);
    st.playlists.push_back(std::move(playlist));
}

} // namespace

TEST(Extensions, ClassificationIsExactAndCaseSensitive) {
    EXPECT_EQ(classifyExtension(".midi"), musicTypeMidi);
    EXPECT_EQ(classifyExtension(".flac"), musicTypeMp3);
    EXPECT_EQ(classifyExtension(".mtm"), musicTypeTracker);
    EXPECT_EQ(classifyExtension(".MP3"), musicTypeUnknown);
    EXPECT_EQ(classifyExtension("mp3"), musicTypeUnknown);
    EXPECT_EQ(classifyExtension(".mp4"), musicTypeUnknown);
    EXPECT_EQ(classifyExtension(""), musicTypeUnknown);
}

TEST(Extensions, ExtensionOfStartsAtTheLastDotOfTheWholePath) {
    EXPECT_EQ(extensionOf("/music/a.b/song.Mid"), ".Mid");
    EXPECT_EQ(extensionOf("/music/a.b/song"), ".b/song");
    EXPECT_EQ(extensionOf("/music/song"), "");
    EXPECT_EQ(extensionOf(""), "");
}

TEST(Recount, EmptyFamiliesHaveTheirRatiosSilenced) {
    PlayerState st;
    addPlaylist(st, {songOf(musicTypeMidi), songOf(musicTypeMidi)});
    recountLibrary(st);
    EXPECT_EQ(st.midiSongCount, 2);
    EXPECT_EQ(st.totalSongCount, 2);
    EXPECT_EQ(st.playlistCount, 1);
    EXPECT_EQ(st.rawMIDI, 50);
    EXPECT_EQ(st.rawMP3, 0);
    EXPECT_EQ(st.rawTracker, 0);
    EXPECT_EQ(st.rawFav, 0);
    EXPECT_EQ(st.rawRadio, 0);
}

TEST(Recount, ASilencedRatioStaysZeroWhenTheFamilyComesBack) {
    PlayerState st;
    recountLibrary(st);
    ASSERT_EQ(st.rawMP3, 0);
    addPlaylist(st, {songOf(musicTypeMp3)});
    st.radioStations.push_back({"Station", "http://example.invalid/", 0, 0});
    recountLibrary(st);
    EXPECT_EQ(st.mp3SongCount, 1);
    EXPECT_EQ(st.stationCount, 1);
    EXPECT_EQ(st.rawMP3, 0);
    EXPECT_EQ(st.rawRadio, 0);
}

TEST(Recount, FavouriteSongsAreCountedByTheirCountNotTheirFlag) {
    PlayerState st;
    addPlaylist(st, {songOf(musicTypeTracker, 3, 0), songOf(musicTypeTracker, 0, 1),
                     songOf(musicTypeUnknown, 2)});
    recountLibrary(st);
    EXPECT_EQ(st.favoriteSongCount, 2);
    EXPECT_EQ(st.totalSongCount, 2);
    EXPECT_EQ(st.rawFav, 50);
}

TEST(Titles, FolderWordsStartAfterUnderscoresAndDotsButNotBlanks) {
    EXPECT_EQ(titleCaseFolder("my_old.songs"), "My Old Songs");
    EXPECT_EQ(titleCaseFolder("my songs"), "My songs");
    EXPECT_EQ(titleCaseFolder("ROCK_x"), "ROCK X");
    EXPECT_EQ(titleCaseFolder(""), "");
}

TEST(Titles, FileTitlesSplitAtUnderscoresAndCapitals) {
    EXPECT_EQ(titleFromPath("/music/rock/my_oldSong.mid"), "My Old Song");
    EXPECT_EQ(titleFromPath("C:\\Music\\abc.def.mid"), "Abc.def");
    EXPECT_EQ(titleFromPath("/music/a.b/noExtension"), "");
    EXPECT_EQ(titleFromPath("/music/.mid"), "");
    EXPECT_EQ(titleFromPath("\xc3\xa9t\xc3\xa9.mp3"), "\xc3\xa9t\xc3\xa9");
}

TEST(Titles, FileTitlesStopAt254Bytes) {
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

TEST_F(PathLine, ShowsTheFamilyAndTheTitleCasedFoldersBelowTheRoot) {
    EXPECT_EQ(displayPath(st, "/music/Rock/old_hits/a.mp3", musicTypeMp3), "MP3 > Rock > Old Hits");
    EXPECT_EQ(st.currentFolderTitle, "Rock");
    EXPECT_EQ(st.lcdTitle, "Rock");
    EXPECT_EQ(displayPath(st, "C:\\Music\\Rock\\old_hits\\a.mp3", musicTypeMp3),
              "MP3 > Rock > Old Hits");
}

TEST_F(PathLine, ARootNotInTheListShowsAllFolders) {
    EXPECT_EQ(displayPath(st, "/home/ann/rock/a.mid", musicTypeMidi), "MIDI > Home > Ann > Rock");
    EXPECT_EQ(displayPath(st, "D:\\tunes\\a.xm", musicTypeTracker), "Tracker > D: > Tunes");
    EXPECT_EQ(st.currentFolderTitle, "D:");
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

TEST_F(PathLine, TheHeadlineIsCutTo255Bytes) {
    displayPath(st, "/music/" + std::string(400, 'x') + "/a.mp3", musicTypeMp3);
    EXPECT_EQ(st.lcdTitle.size(), 255u);
    EXPECT_EQ(st.currentFolderTitle.size(), 400u);
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
