#pragma once
#include <fcntl.h>
#include <optional>
#include <string>
#include <string_view>

// A file descriptor that closes itself.
class FileDescriptor {
  public:
    explicit FileDescriptor(int fd = -1) : fd_(fd) {}
    ~FileDescriptor();
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    FileDescriptor(FileDescriptor&& other) noexcept : fd_(other.fd_) { other.fd_ = -1; }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) {
            reset(other.fd_);
            other.fd_ = -1;
        }
        return *this;
    }
    int get() const { return fd_; }
    void reset(int fd);

  private:
    int fd_;
};

// Opens path with flags (O_RDONLY, O_RDWR ...) and keeps it only when it is a regular file. It
// is opened non-blocking, so a FIFO does not wait for a writer, and a folder or a device, which
// would give no text or never end, is turned away before a byte is read.
enum class RegularOpen { Missing, NotAFile, Open };
// A relative path is looked up in folder, an open folder's descriptor.
RegularOpen openRegularFile(const std::string& path, int flags, FileDescriptor& file,
                            int folder = AT_FDCWD);
// Reads on to the end of the file, appending; false on a read error (what came before stays).
bool readToEnd(int fd, std::string& bytes);
// Writes all the bytes, again after an interruption, at the file's offset or, given one, at
// byte at of the file; false on an error.
bool writeAll(int fd, std::string_view bytes, off_t at = -1);

// Files that another program shares with the player without any locking, read and written in
// place. Neither call blocks on a FIFO or a device, so both are safe on the user-interface thread.

// The whole content of a regular file, read and then truncated through one descriptor, so that
// what another program appends while the file is read is taken too rather than cut away. Nothing,
// with the file untouched, when it is missing, is no regular file (a folder, a FIFO, a device),
// cannot be opened for reading and writing, or cannot be read or emptied.
// A relative path is looked up in folder.
std::optional<std::string> takeFileContents(const std::string& path, int folder = AT_FDCWD);

// Writes bytes over the start of the file (made if missing) with one write, then cuts the file to
// their length, and closes it: no temporary file, no rename, no flush to the disk. A reader
// never finds the file empty. False when it could not be opened, written whole or cut.
bool overwriteFile(const std::string& path, std::string_view bytes);

// A folder whose files are looked at many times a second (the game link's, 33 times). Here a
// path handed to the kernel costs more than all the rest of a look, so nothing walks the path
// each time: the folder and the file written over and over stay open, and a watch on the folder
// tells when a file to take may have come. A new path opens all of it again, and so does the
// written file found deleted or replaced, which is also how a folder deleted and made again
// shows; a folder moved away shows when the path is walked again, every 64 uses.
class KeptFolder {
  public:
    // takeFileContents of name in the folder at path. Looked for only when a file in the folder
    // was closed after writing, made or moved in since the last look, or when the path was walked
    // again; at every call when the folder cannot be watched.
    std::optional<std::string> take(const std::string& path, const char* name);
    // overwriteFile of name in the folder at path, leaving the file open for the next call.
    bool overwrite(const std::string& path, const char* name, std::string_view bytes);

  private:
    int open(const std::string& path);
    void close();

    std::string path_;
    int uses_ = 0;
    FileDescriptor folder_;
    FileDescriptor watch_;
    bool lookPending_ = true;
    std::string writtenName_;
    FileDescriptor written_;
};
