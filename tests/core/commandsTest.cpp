#include "core/commands.h"

#include "core/playerState.h"
#include "support/currentDirectory.h"
#include "support/output.h"
#include "support/recordingPlatform.h"
#include "support/tempDir.h"

#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

// Commands that find nothing to act on: no window, no box, no line, nothing changed.
TEST(Commands, WithoutAnythingToActOnDoNothing) {
    PlayerState st;
    RecordingPlatform platform;
    st.historyPosition = 0;
    st.historyEnd = 4;
    const std::string said = logOf([&] {
        for (int id : {0, 1, 2, 17, 26, 1000, -3, command::previousSong, command::mergeFavorites,
                       command::syncLibrary, command::playGame})
            runCommand(st, id);
    });
    EXPECT_EQ(said, "");
    EXPECT_TRUE(platform.boxes.empty());
    EXPECT_TRUE(platform.dialogs.empty());
    EXPECT_EQ(platform.closeRequests, 0);
    EXPECT_EQ(st.historyPosition, 0);
    EXPECT_EQ(st.historyNavigation, historyWalkOff);
}

TEST(Commands, OpenTheirDialogsAskForTheWindowsCloseAndSayWhenThereIsNoSoundfont) {
    PlayerState st;
    RecordingPlatform platform;
    const std::vector<int> dialogs{9, 10, 11, 12, 15, 16, 19, 22, 24, 15};
    for (int id : dialogs)
        runCommand(st, id);
    EXPECT_EQ(platform.dialogs, dialogs);

    logOf([&] {
        runCommand(st, command::nextSoundFont);
        runCommand(st, command::previousSoundFont);
    });
    ASSERT_EQ(platform.boxes.size(), 2u);
    for (const RecordingPlatform::Box& box : platform.boxes)
        EXPECT_EQ(std::tie(box.text, box.title, box.icon),
                  std::tuple("No soundfont files found.", "Error", host::Icon::Error));

    runCommand(st, command::exit);
    EXPECT_EQ(platform.closeRequests, 1);
}

// The game runs beside the test: this bounds a game that hangs, it measures no speed.
template <typename Condition> bool waitUntil(Condition condition) {
    for (int i = 0; i < 3000 && !condition(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return condition();
}

// "Play Marble Tunnel " for a player with one favourite, the game folder at folder; the errors.
std::string launchFrom(PlayerState& st, const std::string& folder) {
    st.marbleTunnelPath = folder;
    st.playlists = {Playlist{"P", {Song{"/m/a.mp3", 1, 4, 1, musicTypeMp3}}, 1}};
    return errorsOf([&] { runCommand(st, command::playGame); });
}

TEST(PlayGame, StartsTheGameDetachedInItsFolderAfterTheExchangeFilesAndCollectsItsEnd) {
    for (bool relative : {false, true}) { // relative: "..", seen from the data folder inside it
        TempDir game;
        fs::copy_file(TEST_GAME_PATH, game.path() / "Marble Tunnel");
        ScopedCurrentDirectory here(game.mkdir("data"));
        PlayerState st;
        int inherited = ::dup(1);                      // without close-on-exec, yet not the game's
        auto previous = std::signal(SIGPIPE, SIG_IGN); // as the player runs
        ASSERT_EQ(launchFrom(st, relative ? ".." : game.str()), "") << relative;
        std::signal(SIGPIPE, previous);
        ::close(inherited);
        // The launch has returned; the game, waiting for game-quit, tells how it was started.
        ASSERT_TRUE(waitUntil([&] { return fs::exists(game.path() / "game-record.txt"); }));
        std::string record = TempDir::read(game.path() / "game-record.txt");
        const std::string pid = record.substr(0, record.find('\n'));
        EXPECT_EQ(record, pid + "\nfolder " + fs::canonical(game.path()).string() +
                              "\nownSession 1\nexchangeFiles 1 1 1 1\ndescriptors 0 1 2\n"
                              "sigpipeIgnored 0\n");
        // Once it ends it is collected: a zombie would keep its /proc entry.
        game.write("game-quit");
        EXPECT_TRUE(waitUntil([&] { return !fs::exists("/proc/" + pid); })) << relative;
    }
}

TEST(PlayGame, AGameThatCannotStartGivesOneLineAndLeavesThePlayerAndTheFiles) {
    for (bool placed : {false, true}) { // placed: there, without its execute bits
        TempDir game;
        if (placed) {
            fs::copy_file(TEST_GAME_PATH, game.path() / "Marble Tunnel");
            fs::permissions(game.path() / "Marble Tunnel", fs::perms::owner_read);
        }
        PlayerState st;
        RecordingPlatform platform;
        EXPECT_EQ(launchFrom(st, game.str()),
                  std::string("Error launching the game: ") +
                      (placed ? "Permission denied\n" : "No such file or directory\n"));
        EXPECT_EQ(TempDir::read(game.path() / "SongFavs.txt"), "3 0 0 1 /m/a.mp3\n");
        EXPECT_TRUE(platform.boxes.empty() && platform.changes.empty());
    }
}

} // namespace
