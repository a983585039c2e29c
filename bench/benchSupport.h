#pragma once
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <string>
#include <unistd.h>
#include <vector>

// Helpers shared by the figure programs: each program prints one row per figure,
// "NAME VALUE UNIT TARGET ok|MISS", which bench/report collects.
namespace bench {

inline double secondsOf(const std::function<void()>& work) {
    auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    size_t n = values.size();
    if (n == 0)
        return 0.0;
    return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2.0;
}

// A figure with a target that it must not exceed.
inline bool printRow(const std::string& name, double value, const std::string& unit,
                     double maxTarget) {
    bool ok = value <= maxTarget;
    std::printf("%s %.3f %s <=%g %s\n", name.c_str(), value, unit.c_str(), maxTarget,
                ok ? "ok" : "MISS");
    return ok;
}

// A figure shown for information, without a target.
inline void printInfoRow(const std::string& name, double value, const std::string& unit) {
    std::printf("%s %.3f %s - info\n", name.c_str(), value, unit.c_str());
}

// BENCH_CRASH=PROGRAM aborts that figure program before main, so that one can see bench/report
// count a crashed figure as a miss without breaking a program for real.
struct CrashWhenAsked {
    CrashWhenAsked() {
        const char* wanted = std::getenv("BENCH_CRASH");
        if (wanted && std::strcmp(wanted, program_invocation_short_name) == 0)
            std::abort();
    }
};
inline const CrashWhenAsked crashWhenAsked;

// The player logs every load to its standard output; while this lives that goes to a file, as
// when the player runs with its output redirected, and the figure's rows stay apart from it.
// With STDERR_FILENO it catches what a command started meanwhile writes to its error stream.
class OutputToFile {
  public:
    explicit OutputToFile(const std::string& path, int stream = STDOUT_FILENO) : stream_(stream) {
        std::fflush(nullptr);
        saved_ = dup(stream_);
        int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (file >= 0) {
            dup2(file, stream_);
            close(file);
        }
    }
    ~OutputToFile() {
        std::fflush(nullptr);
        if (saved_ >= 0) {
            dup2(saved_, stream_);
            close(saved_);
        }
    }
    OutputToFile(const OutputToFile&) = delete;
    OutputToFile& operator=(const OutputToFile&) = delete;

  private:
    int stream_;
    int saved_ = -1;
};

} // namespace bench
