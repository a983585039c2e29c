#include "util/plainFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

FileDescriptor::~FileDescriptor() {
    reset(-1);
}

void FileDescriptor::reset(int fd) {
    if (fd_ >= 0)
        ::close(fd_);
    fd_ = fd;
}

RegularOpen openRegularFile(const std::string& path, int flags, FileDescriptor& file, int folder) {
    file.reset(::openat(folder, path.c_str(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (file.get() < 0)
        return RegularOpen::Missing;
    struct stat info {};
    if (::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode)) {
        file.reset(-1);
        return RegularOpen::NotAFile;
    }
    return RegularOpen::Open;
}

bool readToEnd(int fd, std::string& bytes) {
    char buffer[16384];
    for (;;) {
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got > 0)
            bytes.append(buffer, static_cast<std::size_t>(got));
        else if (got == 0)
            return true;
        else if (errno != EINTR)
            return false;
    }
}

bool writeAll(int fd, std::string_view bytes, off_t at) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = at < 0 ? ::write(fd, bytes.data() + done, bytes.size() - done)
                                 : ::pwrite(fd, bytes.data() + done, bytes.size() - done,
                                            at + static_cast<off_t>(done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

std::optional<std::string> takeFileContents(const std::string& path, int folder) {
    FileDescriptor file;
    std::string bytes;
    if (openRegularFile(path, O_RDWR, file, folder) != RegularOpen::Open ||
        !readToEnd(file.get(), bytes))
        return std::nullopt;
    // The read that found the end comes right before the truncation: only what is written between
    // these two calls is lost. An empty file is left as it is, its times too.
    if (!bytes.empty() && ::ftruncate(file.get(), 0) != 0)
        return std::nullopt;
    return bytes;
}

bool overwriteFile(const std::string& path, std::string_view bytes) {
    // Not O_TRUNC: ext4 flushes a file that was truncated to nothing and written again when it is
    // closed, which costs a disk write at every call. Writing first and cutting the tail after
    // keeps the blocks and leaves the flush to the kernel's own pace. A regular file takes the
    // bytes in one write.
    FileDescriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0644));
    return file.get() >= 0 && writeAll(file.get(), bytes) &&
           ::ftruncate(file.get(), static_cast<off_t>(bytes.size())) == 0;
}

int KeptFolder::open(const std::string& path) {
    constexpr int usesBeforeWalk = 64;
    if (folder_.get() < 0 || path != path_ || ++uses_ >= usesBeforeWalk) {
        close();
        path_ = path;
        folder_.reset(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (folder_.get() < 0)
            return -1;
        // A game that writes its file with one open and close is heard at once; one that keeps
        // it open is heard when the path is walked again.
        watch_.reset(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
        if (watch_.get() >= 0 && ::inotify_add_watch(watch_.get(), path.c_str(),
                                                     IN_CLOSE_WRITE | IN_CREATE | IN_MOVED_TO) < 0)
            watch_.reset(-1);
    }
    return folder_.get();
}

void KeptFolder::close() {
    uses_ = 0;
    written_.reset(-1);
    watch_.reset(-1);
    folder_.reset(-1);
    lookPending_ = true;
}

std::optional<std::string> KeptFolder::take(const std::string& path, const char* name) {
    const int folder = open(path);
    if (folder < 0)
        return std::nullopt;
    if (watch_.get() >= 0) {
        alignas(inotify_event) char events[4096];
        while (::read(watch_.get(), events, sizeof events) > 0)
            lookPending_ = true;
        if (!lookPending_)
            return std::nullopt;
    }
    lookPending_ = false;
    return takeFileContents(name, folder);
}

bool KeptFolder::overwrite(const std::string& path, const char* name, std::string_view bytes) {
    if (open(path) < 0)
        return false;
    struct stat info {};
    if (written_.get() >= 0 &&
        (writtenName_ != name || ::fstat(written_.get(), &info) != 0 || info.st_nlink == 0))
        written_.reset(-1);
    // A folder deleted under us takes no new file: then the path is walked again at once.
    for (int attempt = 0; written_.get() < 0; ++attempt) {
        writtenName_ = name;
        written_.reset(::openat(folder_.get(), name,
                                O_WRONLY | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0644));
        if (written_.get() >= 0 && ::fstat(written_.get(), &info) == 0)
            break;
        close();
        if (attempt == 1 || open(path) < 0)
            return false;
    }
    // Cutting a file to the length it has already costs an inode update at every call.
    if (!writeAll(written_.get(), bytes, 0) ||
        (info.st_size > static_cast<off_t>(bytes.size()) &&
         ::ftruncate(written_.get(), static_cast<off_t>(bytes.size())) != 0)) {
        close();
        return false;
    }
    return true;
}
