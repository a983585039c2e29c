#pragma once
#include <string>
#include <vector>

// Starting another program for the fixtures and the benchmarks, the way any program would be
// started: found on PATH, without a shell in between.
namespace media {

struct ProgramRun {
    bool ok = false;         // started and exited with status 0
    double cpuSeconds = 0.0; // the child's user + system time, from wait4's rusage
};

// Runs args[0] with args, its input from /dev/null and its output to /dev/null; its errors go to
// ours unless quietErrors. A program that cannot be started gets a line on the error stream.
ProgramRun runProgram(std::vector<std::string> args, bool quietErrors = false);

} // namespace media
