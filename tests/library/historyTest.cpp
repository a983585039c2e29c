#include "library/history.h"

#include "core/playerState.h"
#include "support/output.h"
#include "support/tempDir.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <tuple>

namespace {

// The exact and the damaged forms of the file are tested in util/jsonFileTest.cpp.
TEST(HistoryFile, KeepsTheNewestTenThousandRowsAndLeavesThemAndAFileItCannotOpenAlone) {
    TempDir dir;
    std::string path = (dir.path() / "h.json").string();
    PlayerState st;
    for (int i = 0; i < 10001; ++i)
        st.songHistory.push_back({1, i, 0});
    saveSongHistory(st, path);
    loadSongHistory(st, path);
    ASSERT_EQ(st.songHistory.size(), 10000u);
    EXPECT_EQ(std::tie(st.songHistory.front().songIndex, st.songHistory.back().songIndex),
              std::tuple(1, 10000));

    // A missing or unwritable file gives one line and changes nothing.
    std::string missing = (dir.path() / "missing.json").string();
    EXPECT_EQ(errorsOf([&] { loadSongHistory(st, missing); }),
              "Failed to open " + missing + " for reading.\n");
    EXPECT_EQ(st.songHistory.size(), 10000u);
    std::string taken = dir.mkdir("Song History.json").string(); // a folder took the name
    EXPECT_EQ(errorsOf([&] { saveSongHistory(st, taken); }),
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
