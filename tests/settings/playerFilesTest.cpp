#include "core/libraryEdits.h"
#include "core/playerState.h"
#include "core/shutdown.h"
#include "library/cache.h"
#include "library/stations.h"
#include "settings/configFile.h"
#include "support/tempDir.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/mount.h>

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

namespace fs = std::filesystem;

namespace {

TEST(SmallFiles, StationsColoursAndConfigAreWrittenInTheirExactFormAndReadBack) {
    TempDir dir;
    PlayerState st;
    st.dataDirectory = dir.str();
    const std::string stations = (dir.path() / "InternetStations.json").string();
    saveStations(st, stations);
    EXPECT_EQ(TempDir::read(stations), "null");
    st.radioStations = {RadioStation{"", "http://127.0.0.1:8000/a", 1, 4},
                        RadioStation{"Jazz", "http://127.0.0.1:8000/a", 0, 0}};
    saveStations(st, stations);
    EXPECT_EQ(TempDir::read(stations), R"([
    {
        "favorite": 1,
        "favoriteCount": 4,
        "name": "",
        "url": "http://127.0.0.1:8000/a"
    },
    {
        "favorite": 0,
        "favoriteCount": 0,
        "name": "Jazz",
        "url": "http://127.0.0.1:8000/a"
    }
])");
    PlayerState back;
    EXPECT_TRUE(loadStations(back, stations));
    ASSERT_EQ(back.radioStations.size(), 2u); // the same address twice stays twice
    EXPECT_EQ(back.radioStations[0].favoriteCount, 4);
    EXPECT_EQ(back.radioStations[1].name, "Jazz");
    dir.write("old.json", R"([{"name": "Old", "url": "http://127.0.0.1/"}])");
    EXPECT_TRUE(loadStations(back, (dir.path() / "old.json").string()));
    ASSERT_EQ(back.radioStations.size(), 1u);
    EXPECT_EQ(back.radioStations[0].favorite + back.radioStations[0].favoriteCount, 0);

    st.marbleTunnelPath = "/games/tunnel";
    saveConfig(st);
    EXPECT_EQ(TempDir::read(dir.path() / "config.json"),
              "{\n    \"marbleTunnelPath\": \"/games/tunnel\",\n"
              "    \"soundFontDirectoryPath\": \"\"\n}");
    dir.write("config.json", R"({"soundFontDirectoryPath": "/fonts"})");
    ConfigPaths paths = loadConfig(st);
    EXPECT_EQ(paths.soundFontDirectoryPath, "/fonts");
    EXPECT_EQ(paths.marbleTunnelPath, "");

    saveColorsIfMissing(st);
    std::vector<ColorEntry> colors = loadColors((dir.path() / "colors.json").string());
    EXPECT_EQ(colors, std::vector<ColorEntry>(namedColors.begin(), namedColors.end()));
    EXPECT_TRUE(TempDir::read(dir.path() / "colors.json")
                    .starts_with("[\n    {\n        \"b\": 0,\n        \"g\": 0,\n"
                                 "        \"name\": \"Black\",\n        \"r\": 0\n    },"));
    dir.write("colors.json", "[]"); // the user's file is never touched
    saveColorsIfMissing(st);
    EXPECT_EQ(TempDir::read(dir.path() / "colors.json"), "[]");
}

// One damaged file of each kind: read as far as it goes, one line, the original kept aside.
struct Damage {
    std::string name;
    std::string file;
    std::string text;
    std::size_t kept;
};

std::size_t readBack(const std::string& file, const TempDir& dir) {
    PlayerState st;
    st.dataDirectory = dir.str();
    std::string path = (dir.path() / file).string();
    if (file == "config.json") {
        ConfigPaths paths = loadConfig(st);
        return !paths.marbleTunnelPath.empty() + !paths.soundFontDirectoryPath.empty();
    }
    if (file == "colors.json")
        return loadColors(path).size();
    loadStations(st, path);
    return st.radioStations.size();
}

class DamagedFile : public testing::TestWithParam<Damage> {};

TEST_P(DamagedFile, IsReadAsFarAsItGoesWithOneLineAndACopyAside) {
    TempDir dir;
    dir.write(GetParam().file, GetParam().text);
    CaptureStderr();
    std::size_t kept = readBack(GetParam().file, dir);
    std::string log = GetCapturedStderr();
    EXPECT_EQ(kept, GetParam().kept);
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
    EXPECT_EQ(TempDir::copiesAside(dir.path()), 1);
    EXPECT_EQ(TempDir::read(dir.path() / GetParam().file), GetParam().text);
}

std::vector<Damage> damagedFiles() {
    const std::string station = R"({"name": "S", "url": "http://127.0.0.1/"})";
    const std::string color = R"({"name": "Black", "r": 0, "g": 0, "b": 0})";
    std::vector<Damage> table;
    for (const char* file : {"config.json", "colors.json", "InternetStations.json"}) {
        std::string stem = std::string(file).substr(0, std::string(file).find('.'));
        table.push_back({stem + "NotJson", file, "{\"a\": [", 0});
        table.push_back({stem + "Empty", file, "", 0});
        table.push_back(
            {stem + "RandomBytes", file, std::string("\x89PNG\r\n\x1a\n\0\xff", 10), 0});
    }
    table.push_back({"configRootArray", "config.json", R"(["/fonts"])", 0});
    table.push_back({"configKeyOfWrongType", "config.json",
                     R"({"soundFontDirectoryPath": "/fonts", "marbleTunnelPath": 7})", 1});
    table.push_back({"colorsRootObject", "colors.json", "{\"a\": " + color + "}", 0});
    table.push_back(
        {"colorsKeyMissing", "colors.json", R"([{"name": "X", "r": 1}, )" + color + "]", 1});
    table.push_back({"colorsHugeNumber", "colors.json",
                     R"([{"name": "X", "r": 1e99, "g": 0, "b": 0}, )" + color + "]", 1});
    table.push_back({"stationsRootObject", "InternetStations.json", station, 0});
    table.push_back(
        {"stationsUrlMissing", "InternetStations.json", R"([{"name": "S"}, )" + station + "]", 1});
    table.push_back({"stationsCountOfWrongType", "InternetStations.json",
                     R"([{"name": "S", "url": "u", "favoriteCount": "3"}, )" + station + "]", 1});
    return table;
}

INSTANTIATE_TEST_SUITE_P(Files, DamagedFile, testing::ValuesIn(damagedFiles()),
                         [](const testing::TestParamInfo<Damage>& info) {
                             return info.param.name;
                         });

// A small file system of its own, filled up: a save that does not fit leaves the old file whole
// and no half-written one beside it. Needs the right to mount, which a test machine may not give.
TEST(FullDisk, ASaveThatDoesNotFitLeavesTheOldFilesIntact) {
    TempDir dir;
    fs::path disk = dir.mkdir("disk");
    if (::mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=64k") != 0)
        GTEST_SKIP() << "cannot mount a small file system here: " << std::strerror(errno);
    struct Unmount {
        fs::path at;
        ~Unmount() { ::umount2(at.c_str(), MNT_DETACH); }
    } unmount{disk};

    PlayerState st;
    st.dataDirectory = disk.string();
    st.libraryCachePath = (disk / "musicLibraryCache.json").string();
    st.playlists = {Playlist{"A", {Song{"/m/a.mp3", 0, 3, 0, 1}}, 1}};
    saveLibraryCache(st);
    const std::string before = TempDir::read(st.libraryCachePath);
    ASSERT_FALSE(before.empty());
    // What is left of the disk is far less than the library below needs.
    dir.write("disk/filler", std::string(40 * 1024, 'x'));
    for (int i = 0; i < 2000; ++i)
        st.playlists[0].songs.push_back(Song{"/m/song " + std::to_string(i) + ".mp3", 0, 1, 0, 1});
    st.volume = 0.1f;
    CaptureStderr();
    saveLibraryCache(st);
    shutdown(st);
    GetCapturedStderr();
    EXPECT_EQ(TempDir::read(st.libraryCachePath), before);
    // The small settings file still fits: whole, and new.
    auto settings = nlohmann::json::parse(TempDir::read(disk / "MusicSettings.json"));
    EXPECT_FLOAT_EQ(settings["volumeLevel"].get<float>(), 0.1f);
    for (const auto& entry : fs::directory_iterator(disk))
        EXPECT_EQ(entry.path().filename().string().find(".tmp-"), std::string::npos)
            << entry.path();
}

} // namespace
