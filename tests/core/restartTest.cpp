#include "core/libraryEdits.h"
#include "core/playerState.h"
#include "core/shutdown.h"
#include "library/favorites.h"
#include "settings/configFile.h"
#include "support/startedPlayer.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <tuple>

namespace fs = std::filesystem;

namespace {

// The game's MIDI and tracker folders, each with one album.
const std::vector<std::string> gameMusic = {"HarpTone/MIDI Songs/Marches/x.mid",
                                            "HarpTone/MIDI Songs/Marches/y.mid",
                                            "HarpTone/Tracker Songs/Chip/z.xm"};

void stop(PlayerState& st, const GameFolder& folder) {
    ScopedCurrentDirectory cwd(folder.data);
    shutdown(st);
}

// A whole run: the start-up, what the user does, and the exit the close box makes.
template <typename Use> void runOnce(const GameFolder& folder, Use use) {
    StartedPlayer player(folder);
    use(player.st);
    stop(player.st, folder);
}

TEST(Restart, BringsBackPlayCountsFavouritesHistoryAndSettingsWithoutAScan) {
    GameFolder folder(gameMusic);
    std::vector<HistoryEntry> rows;
    runOnce(folder, [&](PlayerState& st) {
        Song& y = st.playlists[0].songs[1];
        y.playCount = 17;
        countFavoriteUp(y);
        countFavoriteUp(y);
        countFavoriteUp(st.playlists[1]);
        st.playlists[1].iRadioMode = 1;
        st.rawFav = 40; // kept by the start's recount only because a favourite is there
        rows = st.songHistory;
    });
    const std::string settings = folder.read("data/MusicSettings.json");
    EXPECT_NE(folder.read("data/favorite.json").find("Marches/y.mid"), std::string::npos);
    folder.add("HarpTone/MIDI Songs/Marches/added later.mid"); // no scan may find it

    StartedPlayer second(folder);
    PlayerState& st = second.st;
    ASSERT_EQ(st.playlists.size(), 2u);
    ASSERT_EQ(st.playlists[0].songs.size(), 2u); // a scan or rebuild would have found the third
    const Song& y = st.playlists[0].songs[1];
    const Playlist& chip = st.playlists[1];
    EXPECT_GE(y.playCount, 17); // one more if the start drew it again
    EXPECT_EQ(std::tie(y.isFavorite, y.favoriteCount, chip.iRadioMode, chip.isFavorite,
                       chip.favoriteCount, st.rawFav),
              std::tuple(1, 2, 1, 1, 1, 40));
    ASSERT_EQ(st.songHistory.size(), rows.size() + 1);
    EXPECT_EQ(st.songHistory[0], rows[0]);
    // Nothing of the settings changed in the second run, so its exit writes the same bytes.
    stop(st, folder);
    EXPECT_EQ(folder.read("data/MusicSettings.json"), settings);
}

TEST(Shutdown, WithAnEmptyLibraryAndNoAudioStillWritesEveryFile) {
    TempDir dir;
    PlayerState st;
    st.dataDirectory = dir.str();
    st.libraryCachePath = dir.str() + "/musicLibraryCache.json";
    shutdown(st);
    for (const char* file :
         {"musicLibraryCache.json", "favorite.json", "InternetStations.json", "Song History.json"})
        EXPECT_EQ(TempDir::read(dir.path() / file), "null") << file;
    EXPECT_TRUE(fs::exists(dir.path() / "MusicSettings.json"));
    // The built-in colours for the user to see, unless the user's own file is there.
    EXPECT_EQ(loadColors(dir.str() + "/colors.json"),
              std::vector<ColorEntry>(namedColors.begin(), namedColors.end()));
    dir.write("colors.json", "[]");
    shutdown(st);
    EXPECT_EQ(TempDir::read(dir.path() / "colors.json"), "[]");
}

TEST(Restart, ALostCacheIsRebuiltOnceFromTheStoredFolders) {
    GameFolder folder(gameMusic);
    runOnce(folder, [](PlayerState& st) { st.volume = 0.3f; });
    fs::remove(folder.data + "/musicLibraryCache.json");
    StartedPlayer second(folder);
    EXPECT_NE(second.output.find("No library cache: rebuilding the library from the music "
                                 "folders.\n"),
              std::string::npos);
    EXPECT_EQ(std::tuple(second.st.directoryPaths.size(), second.st.playlists.size()),
              std::tuple(3u, 2u));
    EXPECT_FLOAT_EQ(second.st.volume, 0.3f);
}

// Settings that cannot say where the library came from must not send the start-up down the
// first-start path, whose rebuild would replace the cache and every count in it.
class LostSettings : public testing::TestWithParam<const char*> {};

TEST_P(LostSettings, NeverReplaceACacheThatHeldSongs) {
    GameFolder folder(gameMusic);
    folder.add("HarpTone/Mp3 Songs/Live/w.mp3");
    runOnce(folder, [](PlayerState& st) { st.playlists[0].songs[0].playCount = 99; });
    fs::remove(folder.data + "/MusicSettings.json");
    if (std::string(GetParam()) != "missing")
        folder.root.write("game/data/MusicSettings.json", GetParam());
    folder.add("HarpTone/MIDI Songs/Marches/added later.mid");

    std::unique_ptr<StartedPlayer> second;
    std::string log = errorsOf([&] { second = std::make_unique<StartedPlayer>(folder); });
    const PlayerState& st = second->st;
    EXPECT_NE(log.find("keeping the library cache"), std::string::npos) << log;
    ASSERT_EQ(st.playlists.size(), 3u);
    EXPECT_EQ(st.playlists[0].songs.size(), 2u);
    EXPECT_GE(st.playlists[0].songs[0].playCount, 99);
    EXPECT_EQ(std::tie(st.directoryPaths, st.hasMusicFolders),
              std::tuple(folder.gameRoots(), true));
}

INSTANTIATE_TEST_SUITE_P(Files, LostSettings,
                         testing::Values("missing", "{\"directoryPaths\": [", "[1, 2]",
                                         "{\"directoryPaths\": \"/music\"}",
                                         "{\"volumeLevel\": 0.2}"));

// Stored settings without roots: the default folder is scanned before they are read.
TEST(Restart, TheDefaultFolderKeepsItsFavouritesAndItsScanDoesNotOverwriteTheSettings) {
    GameFolder folder({"data/Music/Road_trip/a.mid", "data/Music/Road_trip/b.mid"});
    folder.root.write("game/data/MusicSettings.json",
                      R"({"directoryPaths": [], "volumeLevel": 0.25, "rawFav": 7})");
    runOnce(folder, [&](PlayerState& st) {
        EXPECT_FLOAT_EQ(st.volume, 0.25f);
        auto stored = nlohmann::json::parse(folder.read("data/MusicSettings.json"));
        EXPECT_FLOAT_EQ(stored["volumeLevel"].get<float>(), 0.25f);
        EXPECT_TRUE(fs::exists(folder.data + "/musicLibraryCache.json"));
        countFavoriteUp(st.playlists[0].songs[1]);
    });
    StartedPlayer second(folder);
    ASSERT_EQ(second.st.playlists.size(), 1u);
    const Song& b = second.st.playlists[0].songs[1];
    EXPECT_EQ(std::tie(b.isFavorite, b.favoriteCount), std::tuple(1, 1));
}

TEST(Rescan, KeepsFavouritesOfMovedFilesByNameAndStartsPlayCountsAfresh) {
    GameFolder folder(gameMusic);
    StartedPlayer player(folder);
    PlayerState& st = player.st;
    st.rawFav = 30;
    st.playlists[0].songs[1].playCount = 5;
    countFavoriteUp(st.playlists[0].songs[1]); // y.mid, marked after the start's export
    countFavoriteUp(st.playlists[0].songs[1]);
    st.playlists[0].iRadioMode = 1;
    // The user moves y.mid to another album, under another case.
    fs::remove(folder.game + "/HarpTone/MIDI Songs/Marches/y.mid");
    folder.add("HarpTone/MIDI Songs/Waltzes/Y.MID");

    rescanLibrary(st);
    ASSERT_EQ(st.playlists.size(), 3u);
    auto waltzes = std::ranges::find(st.playlists, "Waltzes", &Playlist::albumName);
    ASSERT_NE(waltzes, st.playlists.end());
    EXPECT_EQ(std::tie(waltzes->songs[0].isFavorite, waltzes->songs[0].favoriteCount),
              std::tuple(1, 2));
    for (const Playlist& playlist : st.playlists) {
        EXPECT_EQ(playlist.iRadioMode, 0);
        for (const Song& song : playlist.songs)
            EXPECT_LE(song.playCount, 1) << song.songPath; // the new start may have drawn it
    }
    EXPECT_EQ(std::tie(st.rawFav, st.favoriteSongCount), std::tuple(30, 1));
    EXPECT_NE(folder.read("data/musicLibraryCache.json").find("Waltzes/Y.MID"), std::string::npos);
}

TEST(Rescan, DeletePathKeepsTheFavouritesOfTheFoldersThatStay) {
    GameFolder folder(gameMusic);
    folder.add("HarpTone/Tracker Songs/Chip/x.mid"); // the same name in the other root
    StartedPlayer player(folder);
    PlayerState& st = player.st;
    ASSERT_EQ(st.playlists.size(), 2u);
    countFavoriteUp(st.playlists[0].songs[0]); // Marches/x.mid, in the folder that goes
    countFavoriteUp(st.playlists[1].songs[1]); // Chip/z.xm
    deleteLibraryPath(st, 0); // a root kept would bring Marches back as a second playlist
    ASSERT_EQ(st.playlists.size(), 1u);
    ASSERT_EQ(st.playlists[0].songs.size(), 2u);
    EXPECT_EQ(st.playlists[0].songs[0].isFavorite, 1); // Chip/x.mid, by its name
    EXPECT_EQ(st.playlists[0].songs[1].isFavorite, 1);
    stop(st, folder);
    EXPECT_NE(folder.read("data/favorite.json").find("Chip/z.xm"), std::string::npos);
}

} // namespace
