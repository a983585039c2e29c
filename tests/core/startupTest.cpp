#include "core/startup.h"

#include "core/playerState.h"
#include "library/model.h"
#include "radio/selectionTestSupport.h"
#include "support/startedPlayer.h"
#include "util/paths.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <tuple>

namespace {

// The list page: the built-in stations, then the entries given.
std::vector<std::string> listOf(const PlayerState& st, std::vector<std::string> entries) {
    entries.insert(entries.begin(), st.builtInStationNames.begin(), st.builtInStationNames.end());
    return entries;
}

TEST(GameFolderPath, IsTheParentOfTheCurrentDirectoryAndTheRootStaysTheRoot) {
    EXPECT_EQ(parentOfPath("/home/ann/game/data/"), "/home/ann/game");
    EXPECT_EQ(parentOfPath("/data"), "/");
    EXPECT_EQ(parentOfPath("/"), "/");
    EXPECT_EQ(joinPath("/", "/HarpTone/SoundFonts"), "/HarpTone/SoundFonts");
}

TEST(StartupPaths, WithNoMusicAnywhereNothingPlaysAndTheListHoldsOnlyTheBuiltInStations) {
    GameFolder folder;
    StartedPlayer player(folder);
    const PlayerState& st = player.st;

    EXPECT_EQ(std::tuple(st.playlists.size(), st.directoryPaths.size(), st.songHistory.size()),
              std::tuple(0u, 0u, 0u));
    EXPECT_EQ(st.marbleTunnelPath, folder.game);
    EXPECT_EQ(st.libraryCachePath, folder.data + "/musicLibraryCache.json");
    EXPECT_EQ(st.listEntries, listOf(st, {}));
    EXPECT_NE(player.output.find("Current directory: " + folder.game + "\n"), std::string::npos);
    // No soundfont: the one box StartupFonts checks, and the game's folder kept for next time.
    EXPECT_EQ(player.platform.boxes.size(), 1u);
    EXPECT_TRUE(std::filesystem::exists(folder.data + "/config.json"));
}

TEST(StartupPaths, SongsOnlyInTheDefaultFolderAreScannedWithoutBecomingARoot) {
    GameFolder folder({"data/Music/Road_trip/a.mid", "data/Music/Road_trip/cd2/b.MP3"});
    StartedPlayer player(folder);
    const PlayerState& st = player.st;

    ASSERT_EQ(st.playlists.size(), 1u);
    EXPECT_EQ(std::tuple(st.playlists[0].albumName, st.totalSongCount, st.directoryPaths.size(),
                         st.hasMusicFolders, st.songHistory.size()),
              std::tuple("Road_trip", 2, 0u, false, 1u));
    EXPECT_EQ(st.songFilePath.rfind(folder.data + "/Music/Road_trip/", 0), 0u);
}

TEST(StartupPaths, AFirstStartEntersTheGamesThreeFoldersAndPlaysFromThem) {
    GameFolder folder({"data/Music/Other/w.mp3", "HarpTone/MIDI Songs/Marches/x.mid",
                       "HarpTone/Mp3 Songs/Live_set/y.flac", "HarpTone/Tracker Songs/Chip/z.xm"});
    StartedPlayer player(folder);
    const PlayerState& st = player.st;

    EXPECT_EQ(std::tie(st.directoryPaths, st.hasMusicFolders, st.totalSongCount),
              std::tuple(folder.gameRoots(), true, 3));
    // The first-start ratios, then the recount silences what has nothing to offer.
    EXPECT_EQ(selectionTest::ratiosOf(st), (selectionTest::Ratios{50, 50, 50, 0, 0}));
    // One playlist of each root's album, in the order of the roots.
    EXPECT_EQ(st.listEntries, listOf(st, {"MIDI > Marches", "MP3 > Live Set", "Tracker > Chip"}));
    ASSERT_EQ(st.songHistory.size(), 1u);
    const HistoryEntry& row = st.songHistory[0];
    EXPECT_EQ(st.playlists[row.plistIndex].songs[row.songIndex].musicType, row.songType);
    EXPECT_EQ(st.currentMusicType, row.songType);
}

TEST(StartupList, APlaylistWithoutSongsShowsItsFolderNameAndReadsNothingPastItsEnd) {
    PlayerState st;
    // A cache of an earlier run can hold a playlist whose songs are gone.
    st.directoryPaths = {"/music"};
    st.playlists.push_back(Playlist{"empty_album", {}, 0, 0, 0, 0});
    st.playlists.push_back(Playlist{"Rock", {Song{"/music/Rock/old_hits/a.mp3", 0, 0, 0, 1}}, 1});
    st.radioStations.push_back(RadioStation{"Jazz FM", "http://127.0.0.1/jazz", 0, 0});
    recountLibrary(st);
    buildListEntries(st);
    EXPECT_EQ(st.listEntries, listOf(st, {"Jazz FM", "Empty Album", "MP3 > Rock > Old Hits"}));
}

} // namespace
