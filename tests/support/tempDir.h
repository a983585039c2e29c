#pragma once
#include <filesystem>
#include <string>

// A fresh folder under the system's temporary folder, removed with everything in it at the end.
class TempDir {
  public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::string str() const { return path_.string(); }
    // Creates the file (and its folders) below the root, with the given bytes.
    std::filesystem::path write(const std::string& relative, const std::string& bytes = "") const;
    std::filesystem::path mkdir(const std::string& relative) const;

    // How many damaged files were copied aside (NAME.bad-TIME) directly in folder.
    static int copiesAside(const std::filesystem::path& folder);

    // The whole of a file's bytes; empty when it cannot be read.
    static std::string read(const std::filesystem::path& file);

  private:
    std::filesystem::path path_;
};
