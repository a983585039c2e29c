#pragma once
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <spawn.h>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

extern char** environ;

// A program left running beside a figure program, and the CPU time the kernel counts for it.
namespace bench {

struct Launch {
    std::vector<std::string> args;     // args[0] is found on PATH
    std::string directory;             // its current directory; empty: ours
    std::string outputPath;            // its standard output and error go here
    std::vector<std::string> settings; // NAME=VALUE added to our environment, overriding it
};

// Started in a process group of its own; stopped with SIGTERM, as a user's session would stop it,
// and killed only if it has not exited 10 s later.
class RunningProgram {
  public:
    explicit RunningProgram(const Launch& launch) {
        std::vector<std::string> args = launch.args;
        std::vector<std::string> env = environmentWith(launch.settings);
        std::vector<char*> argv = pointersTo(args);
        std::vector<char*> envp = pointersTo(env);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, launch.outputPath.c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0644);
        posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
        if (!launch.directory.empty())
            posix_spawn_file_actions_addchdir_np(&actions, launch.directory.c_str());
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
        posix_spawnattr_setpgroup(&attributes, 0);
        int failed = posix_spawnp(&pid_, argv[0], &actions, &attributes, argv.data(), envp.data());
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&actions);
        if (failed != 0) {
            std::fprintf(stderr, "cannot start %s: %s\n", argv[0], std::strerror(failed));
            pid_ = 0;
        }
    }
    ~RunningProgram() { stop(); }
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    pid_t pid() const { return pid_; }
    bool alive() {
        if (pid_ == 0 || exited_)
            return false;
        int status = 0;
        if (waitpid(pid_, &status, WNOHANG) == pid_) {
            exited_ = true;
            status_ = status;
        }
        return !exited_;
    }
    // The wait status after SIGTERM; -1 when it had to be killed or never started.
    int stop() {
        if (pid_ == 0)
            return -1;
        if (alive()) {
            kill(pid_, SIGTERM);
            auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
            while (alive() && std::chrono::steady_clock::now() < deadline)
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
            if (alive()) {
                std::fprintf(stderr, "%d did not end on SIGTERM: killed\n", int(pid_));
                kill(-pid_, SIGKILL);
                waitpid(pid_, nullptr, 0);
                exited_ = true;
                status_ = -1;
            }
        }
        pid_ = 0;
        return status_;
    }

  private:
    static std::vector<std::string> environmentWith(const std::vector<std::string>& settings) {
        std::vector<std::string> env;
        for (char** e = environ; *e; ++e) {
            std::string entry = *e;
            bool overridden = false;
            for (const std::string& s : settings)
                overridden |= entry.compare(0, s.find('=') + 1, s, 0, s.find('=') + 1) == 0;
            if (!overridden)
                env.push_back(entry);
        }
        env.insert(env.end(), settings.begin(), settings.end());
        return env;
    }
    static std::vector<char*> pointersTo(std::vector<std::string>& strings) {
        std::vector<char*> pointers;
        for (std::string& s : strings)
            pointers.push_back(s.data());
        pointers.push_back(nullptr);
        return pointers;
    }

    pid_t pid_ = 0;
    bool exited_ = false;
    int status_ = -1;
};

// User + system seconds of a task from its stat file (a process: all its threads, also those
// that ended; a thread: its own), and its name; -1 when it is gone.
struct TaskTime {
    std::string name;
    double seconds = -1.0;
};
inline TaskTime readTaskTime(const std::string& statPath) {
    std::ifstream in(statPath);
    std::string line;
    if (!std::getline(in, line))
        return {};
    std::size_t open = line.find('('), close = line.rfind(')');
    if (open == std::string::npos || close == std::string::npos)
        return {};
    std::istringstream fields(line.substr(close + 2));
    std::string field;
    double ticks = 0.0;
    for (int index = 3; index <= 15 && fields >> field; ++index)
        if (index >= 14)
            ticks += std::stod(field); // utime, stime
    return {line.substr(open + 1, close - open - 1), ticks / double(sysconf(_SC_CLK_TCK))};
}

inline double processCpuSeconds(pid_t pid) {
    return readTaskTime("/proc/" + std::to_string(pid) + "/stat").seconds;
}

// Every thread of the process by its id.
inline std::map<int, TaskTime> threadCpuSeconds(pid_t pid) {
    std::map<int, TaskTime> threads;
    std::string folder = "/proc/" + std::to_string(pid) + "/task";
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        std::string tid = entry.path().filename().string();
        TaskTime time = readTaskTime(folder + "/" + tid + "/stat");
        if (time.seconds >= 0.0)
            threads[std::stoi(tid)] = time;
    }
    return threads;
}

} // namespace bench
