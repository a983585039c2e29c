// Stands in for the game in the launch tests: records how it was started in game-record.txt of
// its working folder (whole, by a rename), then waits for game-quit there, a minute at the most.
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <thread>
#include <unistd.h>

int main() {
    namespace fs = std::filesystem;
    std::string record = std::to_string(::getpid()) + "\nfolder " + fs::current_path().string() +
                         "\nownSession " + std::to_string(::getsid(0) == ::getpid()) +
                         "\nexchangeFiles";
    for (const char* name :
         {"MusicLibraryCache.txt", "SongFavs.txt", "MusicPaths.txt", "SoundFontsPath.Txt"})
        record += fs::exists(name) ? " 1" : " 0";
    record += "\ndescriptors";
    for (int fd = 0; fd < 1024; ++fd)
        if (::fcntl(fd, F_GETFD) != -1)
            record += ' ' + std::to_string(fd);
    struct sigaction pipeAction = {};
    ::sigaction(SIGPIPE, nullptr, &pipeAction);
    record += "\nsigpipeIgnored " + std::to_string(pipeAction.sa_handler == SIG_IGN) + "\n";
    std::ofstream("game-record.tmp") << record;
    fs::rename("game-record.tmp", "game-record.txt");
    for (int i = 0; i < 6000 && !fs::exists("game-quit"); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
}
