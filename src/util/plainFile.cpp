#include "util/plainFile.h"

#include <cerrno>
#include <fcntl.h>
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

RegularOpen openRegularFile(const std::string& path, int flags, FileDescriptor& file) {
    file.reset(::open(path.c_str(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
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

bool writeAll(int fd, std::string_view bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

std::optional<std::string> takeFileContents(const std::string& path) {
    FileDescriptor file;
    std::string bytes;
    if (openRegularFile(path, O_RDWR, file) != RegularOpen::Open || !readToEnd(file.get(), bytes))
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
