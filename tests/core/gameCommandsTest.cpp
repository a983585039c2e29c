#include "core/gameCommands.h"

#include "core/playerState.h"
#include "core/transport.h"
#include "core/windowEvents.h"
#include "gamelink/songInfo.h"
#include "library/model.h"
#include "playback/fadeWorker.h"
#include "support/output.h"
#include "support/recordingPlatform.h"
#include "support/tempDir.h"

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <ranges>
#include <sys/stat.h>

namespace {

using namespace std::literals;
namespace fs = std::filesystem;

// Three songs (the first a favourite) and a station, on no audio; a tick of timer 3 reads
// commands.txt in a fresh game folder.
struct LinkedPlayer {
    TempDir game;
    RecordingPlatform platform;
    PlayerState st;
    LinkedPlayer() {
        const Song plain{"/b.mp3", 0, 0, 0, musicTypeMp3};
        st.playlists.push_back({"A", {Song{"/a.mp3", 1, 0, 2, musicTypeMp3}, plain, plain}, 3});
        st.radioStations = {RadioStation{"S", "http://127.0.0.1:9/", 1, 1}};
        recountLibrary(st);
        st.scanPlaylistCount = 1, st.scanSongCount = 3, st.FADE_DURATION_MS = 0, st.rawRadio = 20;
        st.familyRng.seed(1), st.selectionRng.seed(2), st.rand15.seed(3);
        st.marbleTunnelPath = game.str();
    }
    ~LinkedPlayer() { endFadeWorkers(st); }
    Song& song(int index) { return st.playlists[0].songs[index]; }
    std::string tick(const std::string& commands) {
        game.write("commands.txt", commands);
        std::string said;
        EXPECT_EQ(errorsOf([&] { said = logOf([&] { onTimer(st, host::timerPoll); }); }), "");
        return said;
    }
    std::string commandFile() const { return TempDir::read(game.path() / "commands.txt"); }
};

// The line, what it prints (the start of it where a transition logs on), and its effect.
using P = LinkedPlayer&;
const auto none = [](P) {};
const std::tuple<const char*, std::string, std::function<void(P)>, std::function<bool(P)>> words[] =
    {
        {"NEXT_SONG", "Next Song...\n", none, [](P p) { return p.st.historyEnd == 1; }},
        {"POS 12.5abc", "Change position to 12.5 seconds...\n", none,
         [](P p) { return p.platform.changes == std::vector{host::PlayerChange::Position}; }},
        {"POS", "", none, [](P p) { return p.platform.changes.empty(); }},
        {"VOL 1.5", "Change volume to 1.5...\n", none,
         [](P p) { return p.st.appliedVolume == 1.5f; }},
        {"VOL 30", "Change volume to 30...\n", none, [](P p) { return p.st.volume == 30.0f; }},
        {"favoriteCount 0", "", none,
         [](P p) { return p.song(0).favoriteCount == 0 && p.song(0).isFavorite == 0; }},
        {"favoriteCount 5", "", [](P p) { p.st.playingSong = 1; },
         [](P p) { return p.song(1).favoriteCount == 5 && p.song(1).isFavorite == 0; }},
        {"favoriteCount 7", "", [](P p) { p.st.onStation = true; },
         [](P p) {
             return p.st.radioStations[0].favoriteCount == 7 && p.song(0).favoriteCount == 2;
         }},
        {"favoriteCount 7", "", [](P p) { p.st.playingSong = 3; },
         [](P p) { return p.song(0).favoriteCount == 2 && p.song(1).favoriteCount == 0; }},
        {"PLAY_SONG 0 2", "", none,
         [](P p) { return p.st.playingSong == 2 && !p.st.playRequested; }},
        {"PLAY_SONG 9999 0", "Error: Invalid playlist index.\n", none,
         [](P p) { return transportState(p.st) != TransportState::Playing; }},
        {"PLAY_SONG 3", "", none, [](P p) { return p.st.historyEnd == 0; }},
        {"favoritesOnly", "", [](P p) { p.st.builtInStation = 2; },
         [](P p) { return p.st.builtInStation == 0 && p.st.stationMode == 1; }},
        {"PREVIOUS_SONG", "",
         [](P p) { appendHistory(p.st, 1, 0, 0), appendHistory(p.st, 1, 1, 0); },
         [](P p) { return p.st.historyPosition == 0; }},
        {"SHUFFLE", "", none, [](P p) { return p.st.shuffle == 0 && p.st.buttonsDirty; }},
        {"NEXT_PLAYLIST", "", none, [](P p) { return p.st.stationMode == 2 && p.st.buttonsDirty; }},
        {"NEXT_SOUNDFONT", "", none,
         [](P p) {
             return p.st.buttonsDirty && p.platform.boxes.size() == 1 &&
                    p.platform.boxes[0].text == "No soundfont files found.";
         }},
        {"", "", none, [](P p) { return !p.st.buttonsDirty && p.platform.changes.empty(); }},
};

TEST(GameCommands, EveryWordHasItsEffectAndItsLine) {
    for (const auto& [line, said, arrange, effect] : words) {
        LinkedPlayer p;
        arrange(p);
        const std::string out = logOf([&] { runCommandLine(p.st, line); });
        // Only a transition sets songInfoDirty here; it logs what it loads after the word's line.
        EXPECT_EQ(p.st.songInfoDirty ? out.substr(0, said.size()) : out, said) << line;
        EXPECT_TRUE(effect(p)) << line;
    }
}

TEST(GameCommands, TenThousandLinesRunInOrderWithinOneTickAndTheFileIsLeftEmpty) {
    LinkedPlayer p;
    p.tick("SHUFFLE\r\nSHUFFLE\n\nNEXT_SONG\nrawFav 7"); // the last line has no line end
    EXPECT_EQ(std::tuple(p.st.shuffle, p.st.historyEnd, p.st.rawFav, p.commandFile()),
              std::tuple(1, 1, 7, ""s));
    EXPECT_EQ(TempDir::read(p.game.path() / "songInfo.txt"), encodeSongInfo(p.st.songInfo));

    // Every word, unknown words, blanks and numbers that do not read; "VOL i" shows the order.
    std::vector<std::string> others;
    for (auto line : std::views::split("NEXT_SONG|POS 3|songPlayDurationMax 90|rawMidi 9|"
                                       "favoriteCount 3|PLAY_SONG 0 1|favoritesOnly|PREVIOUS_SONG|"
                                       "SHUFFLE|NEXT_PLAYLIST|NEXT_SOUNDFONT|FADE_DURATION_MS 1|"
                                       "PLAY_SONG 7 7|HELLO 1|| \r|VOL|rawFav x|rawMIDI 3|"
                                       "rawFav 99999999999|PLAY_SONG 1.5 2|next_song"sv,
                                       '|'))
        others.emplace_back(line.begin(), line.end());
    std::string commands, volumes;
    for (std::size_t i = 0; i < 10000; ++i) {
        commands += (i % 10 ? others[i % others.size()] : "VOL " + std::to_string(i)) + "\n";
        volumes += i % 10 ? "" : "Change volume to " + std::to_string(i) + "...\n";
    }
    // The settings last, after the transitions that zero the ratios of empty families.
    commands += "songPlayDurationMin 20\nrawTracker 2\nrawMP3 3\nrawFav 4\nrawMidi 9";
    std::string said = p.tick(commands), volumesSaid;
    for (auto at = said.find("Change volume"); at != std::string::npos;
         at = said.find("Change volume", at + 1))
        volumesSaid += said.substr(at, said.find('\n', at) + 1 - at);
    EXPECT_EQ(volumesSaid, volumes);
    EXPECT_EQ(std::tuple(p.st.songPlayDurationMax, p.st.songPlayDurationMin, p.st.FADE_DURATION_MS,
                         p.st.rawMIDI, p.st.rawTracker, p.st.rawMP3, p.st.rawFav, p.commandFile()),
              std::tuple(90, 20, 1, 9, 2, 3, 4, ""s));

    std::string noise(65536, '\0'); // random bytes, NULs among them
    std::mt19937 rng(7);
    std::ranges::generate(noise, [&] { return static_cast<char>(rng()); });
    p.tick(noise);
    EXPECT_EQ(p.commandFile(), "");
}

// A folder, a FIFO without a writer, a device that reads on for ever: no command files, passed
// over silently. As root, permissions would not stop the reads.
TEST(GameCommands, TheTickPassesOverWhatIsNoRegularFileAndWaitsDuringALibraryEdit) {
    LinkedPlayer p;
    const fs::path path = p.game.path() / "commands.txt";
    const std::function<void()> makers[] = {[&] { fs::create_directory(path); },
                                            [&] { ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0); },
                                            [&] { fs::create_symlink("/dev/zero", path); }};
    for (const auto& make : makers) {
        fs::remove(path);
        make();
        const fs::file_type before = fs::symlink_status(path).type();
        EXPECT_EQ(logOf([&] { onTimer(p.st, host::timerPoll); }), "");
        EXPECT_EQ(fs::symlink_status(path).type(), before);
    }
    fs::remove(path);
    p.st.libraryEditInProgress = true;
    p.tick("rawFav 7\n");
    EXPECT_EQ(std::tuple(p.st.rawFav, p.commandFile()), std::tuple(50, "rawFav 7\n"s));
    p.st.libraryEditInProgress = false;
    p.tick("rawFav 7\n");
    EXPECT_EQ(std::tuple(p.st.rawFav, p.commandFile()), std::tuple(7, ""s));
}

TEST(GameCommands, WithoutAGameFolderNoFileIsTouched) {
    LinkedPlayer p;
    p.st.marbleTunnelPath.clear();
    p.tick("rawFav 8\n");
    EXPECT_EQ(std::tuple(p.st.rawFav, p.commandFile()), std::tuple(50, "rawFav 8\n"s));
    EXPECT_FALSE(fs::exists(p.game.path() / "songInfo.txt") || fs::exists("/songInfo.txt"));
}

// The folder and songInfo.txt stay open between the ticks. Whatever the game does to them, within
// a second of ticks the record is back at its path and commands.txt is read there.
TEST(GameCommands, TheLinkFindsItsFilesAgainAfterTheGameDeletesReplacesOrMovesThem) {
    LinkedPlayer p;
    const fs::path game = p.game.path(), info = game / "songInfo.txt";
    const std::function<void()> doings[] = {
        [&] { fs::remove(info); },
        [&] { p.game.write("new", "x"), fs::rename(game / "new", info); },
        [&] { fs::remove_all(game), fs::create_directory(game); },
        [&] { fs::rename(game, game.string() + ".old"), fs::create_directory(game); },
    };
    int value = 1;
    for (const auto& doing : doings) {
        p.tick("");
        doing();
        for (int i = 0; i < 33; ++i)
            p.tick("");
        const std::string command = "rawFav " + std::to_string(++value) + "\n";
        p.tick(command);
        EXPECT_EQ(std::tuple(p.st.rawFav, p.commandFile()), std::tuple(value, ""s));
        EXPECT_EQ(TempDir::read(info), encodeSongInfo(p.st.songInfo));
    }
    fs::remove_all(game.string() + ".old");
}

} // namespace
