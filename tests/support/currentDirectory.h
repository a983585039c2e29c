#pragma once
#include <filesystem>

// Makes a folder the process's current directory for the life of the object.
class ScopedCurrentDirectory {
  public:
    explicit ScopedCurrentDirectory(const std::filesystem::path& folder)
        : previous_(std::filesystem::current_path()) {
        std::filesystem::current_path(folder);
    }
    ~ScopedCurrentDirectory() {
        std::error_code ec;
        std::filesystem::current_path(previous_, ec);
    }
    ScopedCurrentDirectory(const ScopedCurrentDirectory&) = delete;
    ScopedCurrentDirectory& operator=(const ScopedCurrentDirectory&) = delete;

  private:
    std::filesystem::path previous_;
};
