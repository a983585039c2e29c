// The root scan against `find ROOT -type f` on a tree of 100,000 files in 1,100 folders: the
// scan lists, sorts and classifies every file, find only lists them, and the scan may take at
// most half as long again.
#include "benchSupport.h"
#include "core/playerState.h"
#include "library/scan.h"
#include "media/process.h"

#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr int albumCount = 100;
constexpr int subFolderCount = 10;
constexpr int filesPerFolder = 100;
constexpr const char* extensions[] = {".mid", ".mp3", ".xm", ".txt"};
constexpr const char* completeMarker = "tree-complete";

bool touch(const std::string& path) {
    int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0)
        return false;
    ::close(fd);
    return true;
}

// Built once; a tree whose building was interrupted has no marker and is built again.
bool ensureTree(const std::filesystem::path& root) {
    namespace fs = std::filesystem;
    std::error_code error;
    if (fs::exists(root / completeMarker, error))
        return true;
    fs::remove_all(root, error);
    std::printf("building %s ...\n", root.c_str());
    for (int album = 0; album < albumCount; ++album) {
        // Mixed case, so that the sort has work to do.
        fs::path albumPath = root / ((album % 2 ? "Album " : "album ") + std::to_string(album));
        for (int sub = 0; sub < subFolderCount; ++sub) {
            fs::path folder = albumPath / ("Disc_" + std::to_string(sub));
            if (!fs::create_directories(folder, error) && error)
                return false;
            for (int file = 0; file < filesPerFolder; ++file) {
                std::string name =
                    (file % 3 ? "track " : "Track ") + std::to_string(file) + extensions[file % 4];
                if (!touch((folder / name).string()))
                    return false;
            }
        }
    }
    return touch((root / completeMarker).string());
}

// find is started the way any program would be, without a shell in between.
double secondsOfFind(const std::string& root) {
    std::vector<std::string> args = {"find", root, "-type", "f"};
    bool ok = true;
    double seconds = bench::secondsOf([&] { ok = media::runProgram(args).ok; });
    return ok ? seconds : -1.0;
}

// The library that the scan returns is kept, as the player keeps it: its release is not timed.
double secondsOfScan(const std::string& root, int& songs) {
    PlayerState st;
    std::vector<Playlist> library;
    double seconds = bench::secondsOf([&] { library = scanRoot(st, root); });
    songs = st.scanSongCount;
    return seconds;
}

} // namespace

int main(int argc, char** argv) {
    std::filesystem::path root = argc > 1 ? argv[1] : "bench/work/scan-tree";
    if (!ensureTree(root)) {
        std::fprintf(stderr, "cannot build the tree under %s\n", root.c_str());
        return 1;
    }
    std::string rootText = root.string();
    int songs = 0;
    secondsOfScan(rootText, songs); // warm the caches, both ways
    if (secondsOfFind(rootText) < 0.0) {
        std::fprintf(stderr, "find failed on %s\n", rootText.c_str());
        return 1;
    }
    constexpr int rounds = 9;
    std::vector<double> scanTimes, findTimes, ratios;
    for (int round = 0; round < rounds; ++round) {
        double scan = secondsOfScan(rootText, songs);
        double find = secondsOfFind(rootText);
        if (find <= 0.0)
            return 1;
        scanTimes.push_back(scan);
        findTimes.push_back(find);
        ratios.push_back(scan / find);
    }
    bench::printInfoRow("scan-songs", songs, "songs");
    bench::printInfoRow("scan-median", bench::median(scanTimes) * 1000.0, "ms");
    bench::printInfoRow("find-median", bench::median(findTimes) * 1000.0, "ms");
    return bench::printRow("scan-vs-find", bench::median(ratios), "x", 1.5) ? 0 : 1;
}
