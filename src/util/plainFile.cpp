#include "util/plainFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class FileDescriptor {
  public:
    explicit FileDescriptor(int fd) : fd_(fd) {}
    ~FileDescriptor() {
        if (fd_ >= 0)
            ::close(fd_);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    int get() const { return fd_; }

  private:
    int fd_;
};

// Reads on to the end of the file; false on a read error.
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

} // namespace

std::optional<std::string> takeFileContents(const std::string& path) {
    // O_NONBLOCK: the open of a FIFO would otherwise wait for a writer. fstat then turns away
    // whatever is not a plain file before a single byte is read from it.
    FileDescriptor file(::open(path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat info {};
    if (file.get() < 0 || ::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode))
        return std::nullopt;
    std::string bytes;
    if (!readToEnd(file.get(), bytes))
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
    // keeps the blocks and leaves the flush to the kernel's own pace.
    FileDescriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0644));
    if (file.get() < 0)
        return false;
    ssize_t written = 0;
    do
        written = ::write(file.get(), bytes.data(), bytes.size());
    while (written < 0 && errno == EINTR);
    return written == static_cast<ssize_t>(bytes.size()) &&
           ::ftruncate(file.get(), static_cast<off_t>(bytes.size())) == 0;
}
