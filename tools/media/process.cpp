#include "media/process.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace media {
namespace {

class SpawnActions {
  public:
    SpawnActions() { posix_spawn_file_actions_init(&actions_); }
    ~SpawnActions() { posix_spawn_file_actions_destroy(&actions_); }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;
    void openNull(int fd, int flags) {
        posix_spawn_file_actions_addopen(&actions_, fd, "/dev/null", flags, 0);
    }
    const posix_spawn_file_actions_t* get() const { return &actions_; }

  private:
    posix_spawn_file_actions_t actions_;
};

double secondsOf(const timeval& t) {
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6;
}

} // namespace

ProgramRun runProgram(std::vector<std::string> args, bool quietErrors) {
    if (args.empty())
        return {};
    std::vector<char*> argv;
    for (std::string& arg : args)
        argv.push_back(arg.data());
    argv.push_back(nullptr);
    SpawnActions actions;
    actions.openNull(STDIN_FILENO, O_RDONLY);
    actions.openNull(STDOUT_FILENO, O_WRONLY);
    if (quietErrors)
        actions.openNull(STDERR_FILENO, O_WRONLY);
    pid_t child = 0;
    int spawned = posix_spawnp(&child, argv[0], actions.get(), nullptr, argv.data(), environ);
    if (spawned != 0) {
        std::fprintf(stderr, "media: cannot start %s: %s\n", argv[0], std::strerror(spawned));
        return {};
    }
    int status = 0;
    rusage usage{};
    while (::wait4(child, &status, 0, &usage) < 0) {
        if (errno != EINTR)
            return {};
    }
    ProgramRun run;
    run.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    run.cpuSeconds = secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
    return run;
}

} // namespace media
