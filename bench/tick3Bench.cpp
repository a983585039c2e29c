// One tick of timer 3 as the player spends it 33 times a second with a game beside it and no
// command waiting: the failed open of commands.txt, the snapshot, and the rewrite of songInfo.txt
// on a disk (a folder under the build tree, never tmpfs, whose writes cost nothing like a disk's).
#include "benchSupport.h"
#include "core/hostPort.h"
#include "core/playerState.h"
#include "core/windowEvents.h"
#include "library/model.h"

#include <filesystem>
#include <linux/magic.h>
#include <sys/vfs.h>

namespace {

constexpr int ticksPerRun = 500;
constexpr int runs = 9;

} // namespace

int main() {
    const std::string game = TICK3_GAME_FOLDER;
    std::filesystem::create_directories(game);
    std::filesystem::remove(game + "/commands.txt");
    struct statfs disk {};
    if (statfs(game.c_str(), &disk) != 0 || disk.f_type == TMPFS_MAGIC) {
        std::fprintf(stderr, "tick3: %s is on tmpfs or cannot be examined\n", game.c_str());
        return 2;
    }
    PlayerState st;
    st.playlists.push_back({"Sines", {Song{game + "/tone_440.mp3", 1, 3, 2, musicTypeMp3}}, 1});
    recountLibrary(st);
    st.marbleTunnelPath = game;
    st.songTitle = "Tone 440";
    st.currentFolderTitle = "Sines";
    for (int i = 0; i < 50; ++i)
        onTimer(st, host::timerPoll);
    std::vector<double> perRun;
    for (int run = 0; run < runs; ++run) {
        const double seconds = bench::secondsOf([&] {
            for (int i = 0; i < ticksPerRun; ++i)
                onTimer(st, host::timerPoll);
        });
        perRun.push_back(seconds * 1000.0 / ticksPerRun);
    }
    if (!std::filesystem::exists(game + "/songInfo.txt")) {
        std::fprintf(stderr, "tick3: no songInfo.txt was written\n");
        return 2;
    }
    return bench::printRow("tick3", bench::median(perRun), "ms", 0.2) ? 0 : 1;
}
