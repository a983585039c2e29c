#include "util/jsonFile.h"

#include "core/libraryEdits.h"
#include "core/playerState.h"
#include "core/shutdown.h"
#include "input/hotkeys.h"
#include "library/cache.h"
#include "library/favorites.h"
#include "library/history.h"
#include "library/stations.h"
#include "settings/configFile.h"
#include "settings/musicSettings.h"
#include "support/output.h"
#include "support/smallDisk.h"
#include "support/tempDir.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <utility>

namespace fs = std::filesystem;

namespace {

const std::string cache = "musicLibraryCache.json", favorites = "favorite.json",
                  history = "Song History.json", stations = "InternetStations.json",
                  colors = "colors.json", config = "config.json", settings = "MusicSettings.json",
                  hotkeys = "hotkeyConfig.json";

// A hotkey file of `count` rows; row i binds key i + 60 when i is in `bound`, with extra fields
// text where given.
std::string hotkeyRows(int count, std::initializer_list<int> bound = {}, int odd = -1,
                       const std::string& oddRow = "") {
    std::string text = "[";
    for (int id = 0; id < count; ++id) {
        const bool isBound = std::find(bound.begin(), bound.end(), id) != bound.end();
        text += id ? "," : "";
        text += id == odd ? oddRow
                          : R"({"alt": false, "ctrl": )" + std::string(isBound ? "true" : "false") +
                                R"(, "gameControllerButton": -1, "gameControllerTrigger": -1,)"
                                R"( "shift": false, "vkKey": )" +
                                std::to_string(isBound ? id + 60 : 0) + "}";
    }
    return text + "]";
}

// The settings of a saved text that differ from a fresh player's, as key=value.
std::string changedSettings(const std::string& text) {
    TempDir scratch;
    PlayerState fresh;
    fresh.dataDirectory = scratch.str();
    saveMusicSettings(fresh);
    const nlohmann::json defaults = nlohmann::json::parse(TempDir::read(scratch.path() / settings)),
                         now = nlohmann::json::parse(text);
    std::string changed;
    for (const auto& [key, value] : now.items())
        if (value != defaults.at(key))
            changed += (changed.empty() ? "" : " ") + key + "=" + value.dump();
    return changed;
}

// Reads one of the player's files in dir with the player's own reader, then writes it back with
// its writer, as the next save does. Tells what the reader kept: a word for each playlist
// (name:songs), row, station, colour or config path, or the settings that differ from a fresh
// player's.
std::string readPlayerFile(const std::string& file, const TempDir& dir) {
    PlayerState st;
    st.dataDirectory = dir.str();
    const std::string path = (dir.path() / file).string();
    st.libraryCachePath = path;
    std::string kept;
    auto keep = [&](const std::string& word) { kept += (kept.empty() ? "" : " ") + word; };
    auto keepEach = [&](const auto& rows, auto word) {
        for (const auto& row : rows)
            keep(word(row));
    };
    if (file == cache) {
        st.playlists = loadLibraryCache(st);
        keepEach(st.playlists,
                 [](auto& p) { return p.albumName + ":" + std::to_string(p.songs.size()); });
        saveLibraryCache(st);
    } else if (file == favorites) {
        mergeFavoritesFile(st, path);
        keepEach(st.favorites, [](auto& row) { return row.songPath; });
        saveFavoritesFile(st, path);
    } else if (file == history) {
        loadSongHistory(st, path);
        keepEach(st.songHistory, [](auto& row) { return std::to_string(row.songIndex); });
        saveSongHistory(st, path);
    } else if (file == stations) {
        EXPECT_TRUE(loadStations(st, path));
        keepEach(st.radioStations, [](auto& station) { return station.name; });
        saveStations(st, path);
    } else if (file == hotkeys) {
        EXPECT_TRUE(loadHotkeys(st, path));
        for (std::size_t id = 0; id < st.hotkeyTable.size(); ++id)
            if (st.hotkeyTable[id].vkKey != 0)
                keep(std::to_string(id) + ":" + std::to_string(st.hotkeyTable[id].vkKey));
        if (st.hotkeyTable.size() != hotkeyRowCount)
            keep("rows:" + std::to_string(st.hotkeyTable.size()));
        saveHotkeys(st, path);
    } else if (file == colors) {
        std::vector<ColorEntry> read = loadColors(path);
        keepEach(read, [](auto& color) { return color.name; });
        saveColors(read, path);
    } else if (file == config) {
        ConfigPaths paths = loadConfig(st);
        for (const std::string& found : {paths.soundFontDirectoryPath, paths.marbleTunnelPath})
            if (!found.empty())
                keep(found);
        st.soundFontDirectoryPath = paths.soundFontDirectoryPath;
        st.marbleTunnelPath = paths.marbleTunnelPath;
        saveConfig(st);
    } else {
        EXPECT_TRUE(loadMusicSettings(st, path)); // a damaged file counts as read
        saveMusicSettings(st);
        kept = changedSettings(TempDir::read(path));
    }
    return kept;
}

// A file of the player's as stored; what the reader keeps of it (damaged files), or what the
// writer gives back, compared as JSON (stored files; empty: the same document).
struct Stored {
    std::string name, file, text, want = "";
    // The writer's own layout is the JSON library's: text comes back in it to the byte.
    bool exact = false;
};

void PrintTo(const Stored& row, std::ostream* os) {
    *os << row.name;
}

class PlayerFiles : public testing::TestWithParam<Stored> {};

TEST_P(PlayerFiles, AreReadQuietlyAndWrittenBackInTheirExactForm) {
    const Stored& row = GetParam();
    TempDir dir;
    const std::string text = row.exact ? nlohmann::json::parse(row.text).dump(4) : row.text;
    dir.write(row.file, text);
    EXPECT_EQ(errorsOf([&] { readPlayerFile(row.file, dir); }), "");
    std::string written = TempDir::read(dir.path() / row.file);
    EXPECT_EQ(nlohmann::json::parse(written),
              nlohmann::json::parse(row.want.empty() ? text : row.want));
    if (row.exact) {
        EXPECT_EQ(written, text);
    }
}

// Every setting away from its default; volumes that a float holds exactly.
const std::string everySettingChanged = R"({"FADE_DURATION_MS": 20000, "bkGrB": 6, "bkGrG": 5,
    "bkGrR": 4, "bkTextureAlpha": 14, "borderlessAuto": 1, "currentBkTextureName": "Leather",
    "currentLCDTextureName": "LCD", "directoryPaths": ["/music/Ünïcode", "/music/\"q\"", "/"],
    "highVolume": 1.0, "historyDepth": -1, "iSongPlayDurationMax": 600, "iSongPlayDurationMin": 2,
    "lowVolume": 0.0, "randomColorPlayer": 1, "rawFav": 8, "rawMIDI": 0, "rawMP3": 100,
    "rawRadio": 9, "rawTracker": 7, "rumbleTime": 1234, "rumbleTimeToggle": 0, "songB": 12,
    "songG": 11, "songPlayDurationMax": 1000, "songPlayDurationMin": 1, "songR": 10,
    "songsBeforeSoundfontChange": 20, "textB": 3, "textG": 2, "textR": 1, "textureAlpha": 13,
    "useRumble": false, "useRumbleToggle": false, "versionCheck": false, "volumeLevel": 0.375,
    "windowAlpha": 0})";

// The cache writes its text itself, so its escapes, scripts and numbers are compared to the byte
// with what the JSON library writes, as the other files are written.
const Stored storedFiles[] = {
    {"cache", cache, R"({"playlists": [{"albumName": "Odd \"one\"\u0002", "favoriteCount": -2,
        "iRadioMode": 1, "isFavorite": 1, "songs": [{"favoriteCount": 2147483647, "isFavorite": 1,
        "musicType": 2, "playCount": -3,
        "songPath": "/m/\"q\" \\ \t\n\b\f\r\u0001\u001f Café Мелодия 東京 🎵.xm"}]},
        {"albumName": "Empty", "favoriteCount": 0, "iRadioMode": 0, "isFavorite": 0}]})",
     "", true},
    {"cacheEmpty", cache, "null", "", true},
    {"cacheWithoutPlaylists", cache, "{}", "null"},
    // Older files: booleans and any number; the stored family is trusted, not the extension.
    {"cacheOlder", cache,
     R"({"playlists": [{"albumName": "Old", "songs": [{"favoriteCount": 2.9,
         "isFavorite": true, "musicType": 2, "playCount": -4.5, "songPath": "/m/a.mp3"}]}]})",
     R"({"playlists": [{"albumName": "Old", "favoriteCount": 0, "iRadioMode": 0, "isFavorite": 0,
         "songs": [{"favoriteCount": 2, "isFavorite": 1, "musicType": 2, "playCount": -4,
         "songPath": "/m/a.mp3"}]}]})"},
    {"favorites", favorites, R"({"favorites": [{"favoriteCount": 4, "plistIndex": 0,
         "songIndex": 1, "songPath": "/m/A/y.xm", "songType": 4}]})"},
    {"favoritesEmpty", favorites, "null"},
    {"history", history, R"({"songs": [{"plistIndex": 2, "songIndex": 7, "songType": 1},
        {"plistIndex": 4, "songIndex": 4, "songType": 3}]})",
     "", true},
    {"historyEmpty", history, "null"},
    // The same address twice stays twice.
    {"stations", stations, R"([{"favorite": 1, "favoriteCount": 4, "name": "", "url": "http://h/a"},
        {"favorite": 0, "favoriteCount": -1, "name": "Jazz", "url": "http://h/a"}])"},
    {"stationsEmpty", stations, "null"},
    {"stationsOlder", stations, R"([{"name": "Old", "url": "http://127.0.0.1/"}])",
     R"([{"favorite": 0, "favoriteCount": 0, "name": "Old", "url": "http://127.0.0.1/"}])"},
    {"colors", colors, R"([{"b": 3, "g": 2, "name": "Black", "r": 1}])"},
    {"config", config, R"({"marbleTunnelPath": "/games/tunnel", "soundFontDirectoryPath": "/f"})"},
    {"configOneKey", config, R"({"soundFontDirectoryPath": "/fonts"})",
     R"({"marbleTunnelPath": "", "soundFontDirectoryPath": "/fonts"})"},
    {"settings", settings, everySettingChanged},
    {"hotkeys", hotkeys, hotkeyRows(30, {0, 11, 29}), "", true},
    // Ids past the file's rows keep their bindings; rows past the 30th are kept and saved.
    {"hotkeysFiveRows", hotkeys, hotkeyRows(5, {4}), hotkeyRows(30, {4})},
    {"hotkeysThirtyOneRows", hotkeys, hotkeyRows(31, {30}), "", true},
    {"hotkeysNumbersCut", hotkeys,
     hotkeyRows(2, {}, 1,
                R"({"alt": true, "ctrl": false, "gameControllerButton": 2.7,
                    "gameControllerTrigger": true, "shift": false, "vkKey": 65.9})"),
     hotkeyRows(30, {}, 1,
                R"({"alt": true, "ctrl": false, "gameControllerButton": 2,
                    "gameControllerTrigger": 1, "shift": false, "vkKey": 65})")},
};

INSTANTIATE_TEST_SUITE_P(Files, PlayerFiles, testing::ValuesIn(storedFiles),
                         [](const auto& info) { return info.param.name; });

// A damaged file of each kind: read as far as it goes, one line naming it, and a copy of it aside.
class DamagedFile : public testing::TestWithParam<Stored> {};

TEST_P(DamagedFile, IsReadAsFarAsItGoesWithOneLineAndACopyAside) {
    TempDir dir;
    const fs::path file = dir.write(GetParam().file, GetParam().text);
    std::string kept;
    std::string log = errorsOf([&] { kept = readPlayerFile(GetParam().file, dir); });
    EXPECT_EQ(kept, GetParam().want);
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
    EXPECT_NE(log.find(file.string()), std::string::npos) << log;
    // The save after the read replaces the file: the copy keeps what the user had.
    EXPECT_EQ(TempDir::copiesAside(dir.path()), std::vector<std::string>{GetParam().text});
}

// The string with its first `from` replaced by `to`.
std::string with(std::string text, const std::string& from, const std::string& to) {
    return text.replace(text.find(from), from.size(), to);
}

std::vector<Stored> damagedFiles() {
    const std::pair<const char*, std::string> files[] = {
        {"cache", cache},       {"favorites", favorites}, {"history", history},
        {"stations", stations}, {"colors", colors},       {"config", config},
        {"settings", settings}, {"hotkeys", hotkeys}};
    std::vector<Stored> table;
    for (const auto& [tag, file] : files) {
        table.push_back({tag + std::string("NotJson"), file, "{\"a\": [", ""});
        table.push_back({tag + std::string("Empty"), file, "", ""});
        table.push_back({tag + std::string("RandomBytes"), file,
                         std::string("\x89PNG\r\n\x1a\n\0\xff", 10), ""});
    }
    // Lists hold a damaged row, then a good one, which is kept; under a key of an object or not.
    auto list = [](const std::string& bad, const std::string& good, const std::string& key = "") {
        std::string rows = "[" + bad + ", " + good + "]";
        return key.empty() ? rows : "{\"" + key + "\": " + rows + "}";
    };
    const std::string song =
        R"({"favoriteCount":0,"isFavorite":0,"musicType":1,"playCount":5,"songPath":"/m/a.mp3"})";
    const std::string playlist = R"({"albumName":"A","songs":[)" + song + "]}";
    auto playlists = [&](const std::string& bad) { return list(bad, playlist, "playlists"); };
    auto songs = [&](const std::string& bad) {
        return R"({"playlists": [{"albumName":"B","songs":)" + list(bad, song) + "}]}";
    };
    const std::string row =
        R"({"favoriteCount":1,"plistIndex":0,"songIndex":0,"songPath":"/m/a.mp3","songType":3})";
    const std::string entry = R"({"plistIndex":0,"songIndex":1,"songType":1})";
    auto favoriteRows = [&](const std::string& bad) { return list(bad, row, "favorites"); };
    auto historyRows = [&](const std::string& bad) { return list(bad, entry, "songs"); };
    const std::string station = R"({"name": "S", "url": "http://127.0.0.1/", "favoriteCount": 1})";
    const std::string color = R"({"name": "Black", "r": 0, "g": 0, "b": 0})";
    const Stored rowsOf[] = {
        {"cacheRootList", cache, "[" + playlist + "]", ""},
        {"cachePlaylistsNotAList", cache, R"({"playlists": "A"})", ""},
        {"cacheCutShort", cache, R"({"playlists": [)" + playlist + R"(, {"albumName": "B", "so)",
         "A:1"},
        {"cacheNullPlaylist", cache, playlists("null"), "A:1"},
        {"cacheKeyMissing", cache, playlists(with(playlist, "albumName", "album")), "A:1"},
        {"cacheSongsNotAList", cache, playlists(R"({"albumName":"B","songs":7})"), "A:1"},
        {"cacheSongKeyMissing", cache, songs(R"({"songPath":"/m/b.mp3"})"), "B:1"},
        {"cacheKeyOfWrongType", cache, songs(with(song, "\"/m/a.mp3\"", "12")), "B:1"},
        {"cacheHugeNumber", cache, songs(with(song, ":5", ":1e300")), "B:1"},
        {"cachePlaylistValueOfWrongType", cache,
         R"({"playlists": [{"albumName":"B","iRadioMode":"yes","songs":[)" + song + "]}]}", "B:1"},
        {"favoritesRootList", favorites, "[" + row + "]", ""},
        {"favoritesNotAList", favorites, R"({"favorites": {}})", ""},
        {"favoritesKeyMissing", favorites, favoriteRows(R"({"songPath":"/m/b.mp3"})"), "/m/a.mp3"},
        {"favoritesKeyOfWrongType", favorites,
         favoriteRows(with(row, "\"/m/a.mp3\"", "[\"/m/b.mp3\"]")), "/m/a.mp3"},
        {"favoritesHugeNumber", favorites, favoriteRows(with(row, ":1,", ":1e40,")), "/m/a.mp3"},
        {"historyRootList", history, "[" + entry + "]", ""},
        {"historySongsNotAList", history, R"({"songs": 5})", ""},
        {"historyKeyMissing", history, historyRows(with(entry, "plistIndex", "plist")), "1"},
        {"historyKeyOfWrongType", history, historyRows(with(entry, ":0", ":\"x\"")), "1"},
        {"historyHugeNumber", history, historyRows(with(entry, ":0", ":99999999999999")), "1"},
        {"stationsRootObject", stations, station, ""},
        {"stationsKeyMissing", stations, list(with(station, "url", "URL"), station), "S"},
        {"stationsKeyOfWrongType", stations, list(with(station, ": 1", ": \"3\""), station), "S"},
        {"stationsHugeNumber", stations, list(with(station, ": 1", ": 1e20"), station), "S"},
        {"colorsRootObject", colors, "{\"a\": " + color + "}", ""},
        {"hotkeysRootObject", hotkeys, R"({"0": {"vkKey": 65}})", ""},
        // A damaged row keeps its id's binding; the rows after it stay at their ids.
        {"hotkeysKeyOfWrongType", hotkeys,
         hotkeyRows(5, {0, 1, 2, 4}, 3, R"({"alt": false, "ctrl": false, "gameControllerButton": -1,
             "gameControllerTrigger": -1, "shift": false, "vkKey": "x"})"),
         "0:60 1:61 2:62 4:64"},
        {"hotkeysFlagNotABoolean", hotkeys,
         hotkeyRows(2, {0}, 1, R"({"alt": 1, "ctrl": false, "gameControllerButton": -1,
             "gameControllerTrigger": -1, "shift": false, "vkKey": 61})"),
         "0:60"},
        // Kept as an unsigned code it would be saved as 4294967295, which no start reads back.
        {"hotkeysNegativeKeyCode", hotkeys,
         hotkeyRows(2, {0}, 1, R"({"alt": false, "ctrl": false, "gameControllerButton": -1,
             "gameControllerTrigger": -1, "shift": false, "vkKey": -1})"),
         "0:60"},
        {"colorsKeyMissing", colors, list(R"({"name": "X", "r": 1})", color), "Black"},
        {"colorsKeyOfWrongType", colors, list(with(color, "\"Black\"", "7"), color), "Black"},
        {"colorsHugeNumber", colors, list(with(color, "\"r\": 0", "\"r\": 1e99"), color), "Black"},
        {"configRootList", config, R"(["/fonts"])", ""},
        {"configKeyOfWrongType", config,
         R"({"soundFontDirectoryPath": "/fonts", "marbleTunnelPath": 7})", "/fonts"},
        {"settingsRootList", settings, R"([{"rawMIDI": 77}])", ""},
        {"settingsKeysOfWrongType", settings,
         R"({"rawMIDI": 77, "rawMP3": "60", "useRumble": 0, "volumeLevel": "loud",
            "directoryPaths": ["/a", 3], "currentBkTextureName": 5, "randomColorPlayer": null,
            "versionCheck": "false"})",
         "rawMIDI=77"},
        {"settingsHugeNumbers", settings,
         R"({"rawMIDI": 77, "rawFav": 1e300, "textR": 99999999999999999999,
            "bkGrR": -3000000000, "lowVolume": 1e39, "songR": 2147483648})",
         "rawMIDI=77"},
    };
    table.insert(table.end(), std::begin(rowsOf), std::end(rowsOf));
    return table;
}

INSTANTIATE_TEST_SUITE_P(Files, DamagedFile, testing::ValuesIn(damagedFiles()),
                         [](const auto& info) { return info.param.name; });

// A player whose data folder is a small file system of its own, filled up by the test: a save
// that does not fit leaves the old file whole and no half-written one beside it. Needs the right
// to mount, which a test machine may not give.
class FullDisk : public testing::Test {
  protected:
    void SetUp() override {
        if (!small.error().empty())
            GTEST_SKIP() << small.error();
        st.dataDirectory = disk.string();
        st.libraryCachePath = (disk / cache).string();
    }
    void TearDown() override {
        for (const auto& entry : fs::directory_iterator(disk))
            EXPECT_EQ(entry.path().filename().string().find(".tmp-"), std::string::npos)
                << entry.path();
    }

    TempDir dir;
    fs::path disk = dir.mkdir("disk");
    SmallDisk small{disk, "64k"};
    PlayerState st;
};

TEST_F(FullDisk, ASaveThatDoesNotFitLeavesTheOldFilesIntact) {
    st.playlists = {Playlist{"A", {Song{"/m/a.mp3", 0, 3, 0, 1}}, 1}};
    saveLibraryCache(st);
    const std::string before = TempDir::read(st.libraryCachePath);
    ASSERT_FALSE(before.empty());
    // What is left of the disk is far less than the library below needs.
    dir.write("disk/filler", std::string(40 * 1024, 'x'));
    for (int i = 0; i < 2000; ++i)
        st.playlists[0].songs.push_back(Song{"/m/song " + std::to_string(i) + ".mp3", 0, 1, 0, 1});
    st.volume = 0.1f;
    errorsOf([&] {
        saveLibraryCache(st);
        shutdown(st);
    });
    EXPECT_EQ(TempDir::read(st.libraryCachePath), before);
    // The small settings file still fits: whole, and new.
    auto saved = nlohmann::json::parse(TempDir::read(disk / settings));
    EXPECT_FLOAT_EQ(saved["volumeLevel"].get<float>(), 0.1f);
}

// The disk fills part-way through the saves at exit: the save that no longer fits fails with its
// one line and keeps its old file, the saves before it are whole, and those after it still try.
TEST_F(FullDisk, TheSavesAroundOneThatDoesNotFitAreWhole) {
    st.playlists = {Playlist{"A", {}, 1}};
    errorsOf([&] { shutdown(st); }); // every file once, small
    const std::string oldStations = TempDir::read(disk / stations);
    dir.write("disk/filler", std::string(small.available() - 24 * 1024, 'x'));
    for (int i = 0; i < 40; ++i) // some 6 KiB, which fits
        st.playlists[0].songs.push_back(Song{"/m/" + std::to_string(i) + ".mp3", 0, 1, 0, 1});
    for (int i = 0; i < 1000; ++i) // some 80 KiB, which does not
        st.radioStations.push_back(RadioStation{"FM", "http://127.0.0.1/" + std::to_string(i)});
    st.songHistory = {HistoryEntry{1, 7, 0}};
    st.historyEnd = 1;
    st.volume = 0.25f;
    const std::string errors = errorsOf([&] { shutdown(st); });
    EXPECT_EQ(errors, "Unable to open file for writing: " + (disk / stations).string() + "\n");
    EXPECT_EQ(TempDir::read(disk / stations), oldStations);
    PlayerState next;
    next.libraryCachePath = st.libraryCachePath;
    EXPECT_EQ(loadLibraryCache(next).at(0).songs.size(), 40u);
    EXPECT_EQ(changedSettings(TempDir::read(disk / settings)), "volumeLevel=0.25");
    EXPECT_NE(TempDir::read(disk / history).find("\"songIndex\": 7"), std::string::npos);
}

} // namespace
