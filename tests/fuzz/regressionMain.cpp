// fuzzRegressions: every file below each folder named on the command line, fed to the target its
// subfolder names (FOLDER/TARGET/FILE), as the libFuzzer binary would feed it. A crash or a
// broken promise ends the run; a subfolder that names no target fails it, so that a renamed target
// cannot leave its inputs unread.
#include "fuzz/fuzzTarget.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> sortedEntries(const fs::path& folder) {
    std::vector<fs::path> entries;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        entries.push_back(entry.path());
    std::ranges::sort(entries);
    return entries;
}

// False when the folder names no target.
bool replayTarget(const fs::path& folder) {
    std::string name = folder.filename().string();
    FuzzFunction run = findFuzzTarget(name);
    if (!run) {
        std::fprintf(stderr, "%s: no fuzz target is called %s\n", folder.c_str(), name.c_str());
        return false;
    }
    int count = 0;
    for (const fs::path& file : sortedEntries(folder)) {
        if (!fs::is_regular_file(file))
            continue;
        std::ifstream in(file, std::ios::binary);
        std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        std::fprintf(stderr, "%s\n", file.c_str()); // the last name printed is the one that broke
        run(bytes);
        ++count;
    }
    std::fprintf(stderr, "%s: %d inputs\n", folder.c_str(), count);
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: fuzzRegressions FOLDER...\n");
        return 2;
    }
    // The readers' lines on the output stream (songs drawn, station tags of random bytes) say
    // nothing here; their error lines, the names read and any failure go to the error stream.
    if (std::FILE* nowhere = std::freopen("/dev/null", "w", stdout); !nowhere)
        return 2;
    bool known = true;
    for (int i = 1; i < argc; ++i) {
        if (!fs::is_directory(argv[i]))
            continue; // no regression yet
        for (const fs::path& target : sortedEntries(argv[i]))
            if (fs::is_directory(target))
                known = replayTarget(target) && known;
    }
    return known ? 0 : 1;
}
