#include "library/cache.h"

#include "core/libraryEdits.h"
#include "core/playerState.h"
#include "support/tempDir.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

namespace {

struct CacheFolder {
    TempDir dir;
    PlayerState st;
    CacheFolder() {
        st.dataDirectory = dir.str();
        st.libraryCachePath = (dir.path() / "musicLibraryCache.json").string();
    }
    std::string text() const { return TempDir::read(st.libraryCachePath); }
    void write(const std::string& text) const { dir.write("musicLibraryCache.json", text); }
};

void expectSameLibrary(const std::vector<Playlist>& a, const std::vector<Playlist>& b) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t p = 0; p < a.size(); ++p) {
        EXPECT_EQ(a[p].albumName, b[p].albumName);
        EXPECT_EQ(a[p].iRadioMode, b[p].iRadioMode);
        EXPECT_EQ(a[p].favoriteCount, b[p].favoriteCount);
        EXPECT_EQ(a[p].isFavorite, b[p].isFavorite);
        EXPECT_EQ(a[p].songCount, b[p].songCount);
        ASSERT_EQ(a[p].songs.size(), b[p].songs.size());
        for (std::size_t i = 0; i < a[p].songs.size(); ++i) {
            const Song& x = a[p].songs[i];
            const Song& y = b[p].songs[i];
            EXPECT_EQ(x.songPath, y.songPath);
            EXPECT_EQ(x.isFavorite, y.isFavorite);
            EXPECT_EQ(x.playCount, y.playCount);
            EXPECT_EQ(x.favoriteCount, y.favoriteCount);
            EXPECT_EQ(x.musicType, y.musicType);
        }
    }
}

TEST(LibraryCache, IsWrittenInItsExactFormAndReadBack) {
    CacheFolder folder;
    saveLibraryCache(folder.st);
    EXPECT_EQ(folder.text(), "null");
    EXPECT_TRUE(loadLibraryCache(folder.st).empty());

    folder.st.playlists = {
        Playlist{"Rock", {Song{"/music/Rock/a \"live\".mp3", 1, 17, 3, 1}}, 1, 1, 2, 1}};
    saveLibraryCache(folder.st);
    EXPECT_EQ(folder.text(), R"({
    "playlists": [
        {
            "albumName": "Rock",
            "favoriteCount": 2,
            "iRadioMode": 1,
            "isFavorite": 1,
            "songs": [
                {
                    "favoriteCount": 3,
                    "isFavorite": 1,
                    "musicType": 1,
                    "playCount": 17,
                    "songPath": "/music/Rock/a \"live\".mp3"
                }
            ]
        }
    ]
})");
    expectSameLibrary(loadLibraryCache(folder.st), folder.st.playlists);
    // Saving the library saves the settings with it.
    EXPECT_TRUE(std::filesystem::exists(folder.dir.path() / "MusicSettings.json"));
}

TEST(LibraryCache, KeepsPathsInAnyScriptAndLeavesOutOnlyThoseThatAreNotUtf8) {
    CacheFolder folder;
    const std::string broken = "/music/Mix/caf\xe9.mp3"; // Latin-1, not UTF-8
    folder.st.playlists = {
        Playlist{"Mix",
                 {Song{"/music/Mix/Café del Mar.mp3", 0, 1, 0, 1}, Song{broken, 1, 9, 2, 1},
                  Song{"/music/Mix/Мелодия 東京 🎵.flac", 0, 2, 0, 1}},
                 3},
        Playlist{"Only_broken", {Song{broken, 0, 0, 0, 1}}, 1},
        Playlist{"Album \xff name", {Song{"/music/x.mid", 0, 0, 0, 0}}, 1}};
    CaptureStderr();
    saveLibraryCache(folder.st);
    std::string log = GetCapturedStderr();
    EXPECT_EQ(log, "Not saved in the library cache, its path is not UTF-8: " + broken + "\n" +
                       "Not saved in the library cache, its path is not UTF-8: " + broken + "\n");
    std::string text = folder.text();
    std::size_t brokenAlbum = text.find("Only_broken");
    std::string brokenEntry = text.substr(brokenAlbum, text.find('}', brokenAlbum) - brokenAlbum);
    EXPECT_EQ(brokenEntry.find("\"songs\""), std::string::npos); // gone with its last song

    std::vector<Playlist> back = loadLibraryCache(folder.st);
    ASSERT_EQ(back.size(), 3u);
    ASSERT_EQ(back[0].songs.size(), 2u);
    EXPECT_EQ(back[0].songs[0].songPath, "/music/Mix/Café del Mar.mp3");
    EXPECT_EQ(back[0].songs[1].songPath, "/music/Mix/Мелодия 東京 🎵.flac");
    EXPECT_EQ(back[0].songCount, 2);
    EXPECT_TRUE(back[1].songs.empty()); // a playlist without songs does not stop the reader
    EXPECT_EQ(back[1].songCount, 0);
    // A name that is not UTF-8 does not stop the file from being written.
    EXPECT_EQ(back[2].albumName, "Album \xef\xbf\xbd name");
    EXPECT_EQ(back[2].songs.size(), 1u);
}

// The cache writes its text itself; it must be what the JSON library writes for the same data.
TEST(LibraryCache, WritesWhatTheJsonLibraryWritesForTheSameLibrary) {
    CacheFolder folder;
    const std::string tricky = std::string("/m/Odd/\"q\" \\ tab\t nl\n \x01\x1f\x7f é ☃.mp3");
    folder.st.playlists = {
        Playlist{"Odd \"one\"\x02", {Song{tricky, 1, -3, 2147483647, 1}}, 1, -1, -2, 1},
        Playlist{"Gone \xc3", {Song{"/m/bad\xe9.mp3", 0, 0, 0, 0}}, 1}, Playlist{"Empty", {}, 0},
        Playlist{"Two", {Song{"/m/a.mid", 0, 1, 0, 0}, Song{"/m/b.xm", 0, 2, 0, 2}}, 2}};
    CaptureStderr();
    saveLibraryCache(folder.st);
    GetCapturedStderr();
    nlohmann::json root;
    for (const Playlist& playlist : folder.st.playlists) {
        nlohmann::json entry = {{"albumName", playlist.albumName},
                                {"iRadioMode", playlist.iRadioMode},
                                {"favoriteCount", playlist.favoriteCount},
                                {"isFavorite", playlist.isFavorite}};
        for (const Song& song : playlist.songs)
            if (song.songPath.find('\xe9') == std::string::npos)
                entry["songs"].push_back({{"favoriteCount", song.favoriteCount},
                                          {"isFavorite", song.isFavorite},
                                          {"musicType", song.musicType},
                                          {"playCount", song.playCount},
                                          {"songPath", song.songPath}});
        root["playlists"].push_back(entry);
    }
    EXPECT_EQ(folder.text(), root.dump(4, ' ', false, nlohmann::json::error_handler_t::replace));
}

TEST(LibraryCache, ReadsOlderFilesBooleansAndAnyNumberAndTrustsTheStoredFamily) {
    CacheFolder folder;
    folder.write(R"({"playlists": [{"albumName": "Old", "songs": [
        {"favoriteCount": 2.9, "isFavorite": true, "musicType": 2, "playCount": -4.5,
         "songPath": "/music/Old/renamed.mp3"}]}]})");
    std::vector<Playlist> back = loadLibraryCache(folder.st);
    ASSERT_EQ(back.size(), 1u);
    EXPECT_EQ(back[0].iRadioMode, 0);
    EXPECT_EQ(back[0].favoriteCount, 0);
    EXPECT_EQ(back[0].isFavorite, 0);
    ASSERT_EQ(back[0].songs.size(), 1u);
    EXPECT_EQ(back[0].songs[0].isFavorite, 1);
    EXPECT_EQ(back[0].songs[0].favoriteCount, 2);
    EXPECT_EQ(back[0].songs[0].playCount, -4);
    EXPECT_EQ(back[0].songs[0].musicType, 2); // the extension is not looked at
    // A root without playlists is an empty library, quietly.
    folder.write("{}");
    CaptureStderr();
    EXPECT_TRUE(loadLibraryCache(folder.st).empty());
    EXPECT_EQ(GetCapturedStderr(), "");
}

TEST(LibraryCache, AMissingFileIsAnEmptyLibraryWithoutAWord) {
    CacheFolder folder;
    CaptureStderr();
    EXPECT_TRUE(loadLibraryCache(folder.st).empty());
    EXPECT_EQ(GetCapturedStderr(), "");
}

struct Damage {
    const char* name;
    std::string text;
    std::size_t playlists; // what is still read
    std::size_t songs;
};

class DamagedCache : public testing::TestWithParam<Damage> {};

TEST_P(DamagedCache, KeepsWhatCanBeReadWithOneLineAndACopyAside) {
    CacheFolder folder;
    folder.write(GetParam().text);
    CaptureStderr();
    std::vector<Playlist> back = loadLibraryCache(folder.st);
    std::string log = GetCapturedStderr();
    EXPECT_EQ(back.size(), GetParam().playlists);
    std::size_t songs = 0;
    for (const Playlist& playlist : back)
        songs += playlist.songs.size();
    EXPECT_EQ(songs, GetParam().songs);
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
    EXPECT_EQ(TempDir::copiesAside(folder.dir.path()), 1);
    EXPECT_EQ(folder.text(), GetParam().text);
}

const std::string goodSong =
    R"({"favoriteCount":0,"isFavorite":0,"musicType":1,"playCount":5,"songPath":"/m/a.mp3"})";
const std::string goodPlaylist = R"({"albumName":"A","songs":[)" + goodSong + "]}";

INSTANTIATE_TEST_SUITE_P(
    Files, DamagedCache,
    testing::Values(
        Damage{"notJson", "{\"playlists\": [", 0, 0}, Damage{"empty", "", 0, 0},
        Damage{"cutShort", R"({"playlists": [)" + goodPlaylist + R"(, {"albumName": "B", "so)", 1,
               1},
        Damage{"nullPlaylist", R"({"playlists": [null, )" + goodPlaylist + "]}", 1, 1},
        Damage{"randomBytes", std::string("\x93\x01\xff\x7f garbage\0", 14), 0, 0},
        Damage{"rootArray", "[" + goodPlaylist + "]", 0, 0},
        Damage{"playlistsNotAList", R"({"playlists": "A"})", 0, 0},
        Damage{"albumNameMissing",
               R"({"playlists": [{"songs": [)" + goodSong + "]}, " + goodPlaylist + "]}", 1, 1},
        Damage{"songsNotAList",
               R"({"playlists": [{"albumName":"B","songs":7}, )" + goodPlaylist + "]}", 1, 1},
        Damage{"songKeyMissing",
               R"({"playlists": [{"albumName":"B","songs":[{"songPath":"/m/b.mp3"}, )" + goodSong +
                   "]}]}",
               1, 1},
        Damage{"songPathNotText",
               R"({"playlists": [{"albumName":"B","songs":[{"favoriteCount":0,"isFavorite":0,)"
               R"("musicType":1,"playCount":5,"songPath":12}, )" +
                   goodSong + "]}]}",
               1, 1},
        Damage{"hugeNumber",
               R"({"playlists": [{"albumName":"B","songs":[{"favoriteCount":0,"isFavorite":0,)"
               R"("musicType":1,"playCount":1e300,"songPath":"/m/b.mp3"}, )" +
                   goodSong + "]}]}",
               1, 1},
        Damage{"playlistValueOfWrongType",
               R"({"playlists": [{"albumName":"B","iRadioMode":"yes","songs":[)" + goodSong +
                   "]}]}",
               1, 1}),
    [](const testing::TestParamInfo<Damage>& info) { return info.param.name; });

TEST(LibraryCache, ASaveThatCannotBeWrittenKeepsTheOldFileAndStillSavesTheSettings) {
    CacheFolder folder;
    folder.st.libraryCachePath = folder.dir.mkdir("taken.json").string();
    folder.st.playlists = {Playlist{"A", {Song{"/m/a.mp3", 0, 0, 0, 1}}, 1}};
    CaptureStderr();
    saveLibraryCache(folder.st);
    EXPECT_EQ(GetCapturedStderr(),
              "Failed to open " + folder.st.libraryCachePath + " for writing.\n");
    EXPECT_TRUE(std::filesystem::is_directory(folder.st.libraryCachePath));
    EXPECT_TRUE(std::filesystem::exists(folder.dir.path() / "MusicSettings.json"));
}

TEST(LibraryCache, WhileTheSettingsSaveIsHeldOnlyTheLibraryIsWritten) {
    CacheFolder folder;
    folder.dir.write("MusicSettings.json", "stored");
    folder.st.settingsSaveHeld = true;
    saveLibraryCache(folder.st);
    EXPECT_EQ(folder.text(), "null");
    EXPECT_EQ(TempDir::read(folder.dir.path() / "MusicSettings.json"), "stored");
}

} // namespace
