#include "library/history.h"

#include "core/playerState.h"
#include "support/tempDir.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

namespace {

TEST(HistoryFile, IsWrittenInItsExactFormAndReadBack) {
    TempDir dir;
    std::string path = (dir.path() / "Song History.json").string();
    PlayerState st;
    saveSongHistory(st, path);
    EXPECT_EQ(TempDir::read(path), "null");
    st.songHistory = {{1, 7, 2}, {3, 4, 4}};
    saveSongHistory(st, path);
    EXPECT_EQ(TempDir::read(path),
              "{\n    \"songs\": [\n        {\n            \"plistIndex\": 2,\n"
              "            \"songIndex\": 7,\n            \"songType\": 1\n"
              "        },\n        {\n            \"plistIndex\": 4,\n"
              "            \"songIndex\": 4,\n            \"songType\": 3\n"
              "        }\n    ]\n}");
    PlayerState back;
    loadSongHistory(back, path);
    EXPECT_EQ(back.songHistory, st.songHistory);
}

TEST(HistoryFile, KeepsTheNewestTenThousandRows) {
    TempDir dir;
    std::string path = (dir.path() / "h.json").string();
    PlayerState st;
    for (int i = 0; i < 10001; ++i)
        st.songHistory.push_back({1, i, 0});
    saveSongHistory(st, path);
    PlayerState back;
    loadSongHistory(back, path);
    ASSERT_EQ(back.songHistory.size(), 10000u);
    EXPECT_EQ(back.songHistory.front().songIndex, 1);
    EXPECT_EQ(back.songHistory.back().songIndex, 10000);
}

TEST(HistoryFile, AMissingFileSaysSoAndLeavesTheHistoryAlone) {
    TempDir dir;
    PlayerState st;
    st.songHistory = {{1, 1, 1}};
    std::string path = (dir.path() / "missing.json").string();
    testing::internal::CaptureStderr();
    loadSongHistory(st, path);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Failed to open " + path + " for reading.\n");
    EXPECT_EQ(st.songHistory.size(), 1u);
}

struct Damage {
    const char* name;
    std::string text;
    std::size_t rowsKept;
};

class DamagedHistory : public testing::TestWithParam<Damage> {};

TEST_P(DamagedHistory, KeepsWhatCanBeReadWithOneLineAndACopyAside) {
    TempDir dir;
    std::string path = dir.write("Song History.json", GetParam().text).string();
    PlayerState st;
    testing::internal::CaptureStderr();
    loadSongHistory(st, path);
    std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(st.songHistory.size(), GetParam().rowsKept);
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
    EXPECT_EQ(TempDir::copiesAside(dir.path()), 1);
    EXPECT_EQ(TempDir::read(path), GetParam().text); // the original stays until the next save
}

const std::string goodRow = R"({"plistIndex":0,"songIndex":1,"songType":1})";

INSTANTIATE_TEST_SUITE_P(
    Files, DamagedHistory,
    testing::Values(
        Damage{"notJson", "{\"songs\": [", 0}, Damage{"empty", "", 0},
        Damage{"randomBytes", std::string("\x93\x01\xff\x7f garbage", 13), 0},
        Damage{"rootArray", "[" + goodRow + "]", 0}, Damage{"songsNotAList", R"({"songs": 5})", 0},
        Damage{"keyOfWrongType",
               R"({"songs": [)" + goodRow + R"(, {"plistIndex":"x","songIndex":1,"songType":1}]})",
               1},
        Damage{"keyMissing", R"({"songs": [{"songIndex":1,"songType":1}, )" + goodRow + "]}", 1},
        Damage{"hugeNumber",
               R"({"songs": [{"plistIndex":99999999999999,"songIndex":1,"songType":1}, )" +
                   goodRow + "]}",
               1}),
    [](const testing::TestParamInfo<Damage>& info) { return info.param.name; });

TEST(HistoryFile, ASaveThatCannotBeWrittenLeavesTheOldFileIntact) {
    TempDir dir;
    PlayerState st;
    st.songHistory = {{1, 1, 1}};
    std::string taken = dir.mkdir("Song History.json").string(); // a folder took the name
    testing::internal::CaptureStderr();
    saveSongHistory(st, taken);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Failed to open " + taken + " for writing.\n");
    EXPECT_TRUE(std::filesystem::is_directory(taken));
    // And through a link the target is replaced, the link kept.
    std::string target = dir.write("real.json", "null").string();
    std::filesystem::create_symlink(target, dir.path() / "link.json");
    saveSongHistory(st, (dir.path() / "link.json").string());
    EXPECT_TRUE(std::filesystem::is_symlink(dir.path() / "link.json"));
    EXPECT_NE(TempDir::read(target), "null");
}

} // namespace
