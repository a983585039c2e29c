#pragma once
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <sys/mount.h>

// A tmpfs of the given size ("64k") mounted over a folder for the life of the object, so that a
// test can fill a disk; mounting needs root, and error() says why it was refused.
class SmallDisk {
  public:
    SmallDisk(const std::filesystem::path& at, const std::string& size) : at_(at) {
        const std::string options = "size=" + size;
        if (::mount("tmpfs", at.c_str(), "tmpfs", 0, options.c_str()) != 0)
            error_ = std::string("cannot mount a small file system here: ") + std::strerror(errno);
    }
    ~SmallDisk() {
        if (error_.empty())
            ::umount2(at_.c_str(), MNT_DETACH);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    const std::string& error() const { return error_; }
    std::uintmax_t available() const {
        std::error_code ec;
        return std::filesystem::space(at_, ec).available;
    }

  private:
    std::filesystem::path at_;
    std::string error_;
};
