#include "util/instanceLock.h"

#include "util/paths.h"

#include <cerrno>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>

namespace {

constexpr const char* lockFileName = "/.marble-tunnel-radio.lock";

// FNV-1a: the same name from every build, unlike std::hash.
std::uint64_t stableHash(const std::string& text) {
    std::uint64_t hash = 14695981039346656037ULL;
    for (unsigned char c : text) {
        hash ^= c;
        hash *= 1099511628211ULL;
    }
    return hash;
}

} // namespace

DataFolderLock lockDataFolder(const std::string& folder) {
    DataFolderLock lock;
    const std::string path = joinPath(folder, lockFileName);
    lock.file.reset(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644));
    if (lock.file.get() < 0) {
        lock.reason = path + ": " + std::strerror(errno);
        return lock;
    }
    if (::flock(lock.file.get(), LOCK_EX | LOCK_NB) == 0) {
        lock.state = FolderLock::Held;
    } else if (errno == EWOULDBLOCK) {
        lock.state = FolderLock::HeldByAnother;
        lock.file.reset(-1);
    } else {
        lock.reason = path + ": " + std::strerror(errno);
        lock.file.reset(-1);
    }
    return lock;
}

std::string instanceSocketPath(const std::string& folder) {
    std::error_code error;
    std::filesystem::path canonical = std::filesystem::canonical(folder, error);
    const std::string key = error ? folder : canonical.string();
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    const std::string base =
        runtime && *runtime ? runtime : std::filesystem::temp_directory_path(error).string();
    char name[64];
    std::snprintf(name, sizeof name, "/marble-tunnel-radio-%016" PRIx64, stableHash(key));
    return joinPath(base, name);
}
