#include "util/atomicFile.h"

#include "util/plainFile.h"

#include <cstdio>
#include <filesystem>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

// A link is written through to its target, so the user's link stays a link.
std::string resolvedTarget(const std::string& path) {
    std::error_code ec;
    if (!fs::is_symlink(path, ec))
        return path;
    fs::path target = fs::read_symlink(path, ec);
    if (ec)
        return path;
    return target.is_absolute() ? target.string()
                                : (fs::path(path).parent_path() / target).string();
}

} // namespace

bool writeFileAtomically(const std::string& path, std::string_view bytes) {
    std::string target = resolvedTarget(path);
    std::string temporary = target + ".tmp-XXXXXX";
    int fd = ::mkstemp(temporary.data());
    if (fd < 0)
        return false;
    // mkstemp makes the file private; the player's files are ordinary files of the user.
    ::fchmod(fd, 0644);
    bool written = writeAll(fd, bytes) && ::fsync(fd) == 0;
    written = ::close(fd) == 0 && written;
    // The new file takes the old one's place in one step, or not at all.
    if (!written || std::rename(temporary.c_str(), target.c_str()) != 0) {
        ::unlink(temporary.c_str());
        return false;
    }
    return true;
}
