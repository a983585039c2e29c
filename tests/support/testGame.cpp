// The companion game's stand-in for the launch tests: it writes game-record.txt in its working
// folder (whole, by a rename), then waits for game-quit there, a minute at the most.
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <thread>
#include <unistd.h>

int main() {
    namespace fs = std::filesystem;
    std::string descriptors; // those open before the record opens its own
    for (int fd = 0; fd < 1024; ++fd)
        if (::fcntl(fd, F_GETFD) != -1)
            descriptors += ' ' + std::to_string(fd);
    struct sigaction pipeAction = {};
    ::sigaction(SIGPIPE, nullptr, &pipeAction);
    std::ofstream record("game-record.tmp");
    record << ::getpid() << "\nfolder " << fs::current_path().string() << "\nownSession "
           << (::getsid(0) == ::getpid()) << "\nexchangeFiles";
    for (const char* name :
         {"MusicLibraryCache.txt", "SongFavs.txt", "MusicPaths.txt", "SoundFontsPath.Txt"})
        record << ' ' << fs::exists(name);
    record << "\ndescriptors" << descriptors << "\nsigpipeIgnored "
           << (pipeAction.sa_handler == SIG_IGN) << '\n';
    record.close();
    fs::rename("game-record.tmp", "game-record.txt");
    for (int i = 0; i < 6000 && !fs::exists("game-quit"); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
}
