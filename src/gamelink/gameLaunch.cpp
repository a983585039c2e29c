#include "gamelink/gameLaunch.h"

#include "gamelink/gameLinkState.h"
#include "util/log.h"
#include "util/paths.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>

extern char** environ;

namespace {

// The spawn's settings, released on every path out.
struct SpawnSettings {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    SpawnSettings() {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
    }
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
};

// The game starts as from a launcher: in its own folder, where it finds the exchange files; in a
// session of its own, so that Ctrl+C in the player's terminal or the terminal's end leaves it
// alone; with the standard descriptors only, not the player's sockets and files; and with every
// signal at its default and none blocked (the player ignores SIGPIPE, which exec would pass on).
int configure(SpawnSettings& spawn, const std::string& folder) {
    sigset_t signals;
    sigemptyset(&signals);
    int error = posix_spawnattr_setsigmask(&spawn.attributes, &signals);
    sigfillset(&signals);
    if (error == 0)
        error = posix_spawnattr_setsigdefault(&spawn.attributes, &signals);
    if (error == 0)
        error = posix_spawnattr_setflags(
            &spawn.attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    if (error == 0)
        error = posix_spawn_file_actions_addchdir_np(&spawn.actions, folder.c_str());
    if (error == 0)
        error = posix_spawn_file_actions_addclosefrom_np(&spawn.actions, 3);
    return error;
}

// The change of folder comes before the exec, so a relative path would be read from the game's
// folder; the program is named by its absolute path.
std::string absolutePath(const std::string& path) {
    std::error_code ec;
    std::filesystem::path absolute = std::filesystem::absolute(path, ec);
    return ec ? path : absolute.string();
}

// Collects the game's exit status so it leaves no zombie; that pid only, never another child.
void waitInBackground(pid_t pid) {
    try {
        std::thread([pid] {
            while (::waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
            }
        }).detach();
    } catch (const std::system_error& error) {
        logErr("The game runs, but nothing waits for its end: %s\n", error.what());
    }
}

} // namespace

bool launchGame(GameLinkState& st) {
    if (st.marbleTunnelPath.empty())
        return false;
    st.gameExePath = joinPath(st.marbleTunnelPath, "/Marble Tunnel");
    std::string program = absolutePath(st.gameExePath);
    std::string folder = absolutePath(st.marbleTunnelPath);
    SpawnSettings spawn;
    int error = configure(spawn, folder);
    pid_t pid = 0;
    char* argv[] = {program.data(), nullptr};
    if (error == 0)
        error =
            posix_spawn(&pid, program.c_str(), &spawn.actions, &spawn.attributes, argv, environ);
    if (error != 0) {
        logErr("Error launching the game: %s\n", std::strerror(error));
        return false;
    }
    waitInBackground(pid);
    return true;
}
