#pragma once
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

// A fresh folder under the system's temporary folder, removed with everything in it at the end.
class TempDir {
  public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "mtr-test-XXXXXX").string();
        if (!::mkdtemp(pattern.data()))
            throw std::runtime_error("mkdtemp failed");
        path_ = pattern;
    }
    ~TempDir() {
        namespace fs = std::filesystem;
        std::error_code ec;
        // Tests may take permissions away to provoke errors; give them back so removal works.
        for (auto it = fs::recursive_directory_iterator(
                 path_, fs::directory_options::skip_permission_denied, ec);
             !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
            if (it->is_directory(ec) && !it->is_symlink(ec))
                fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ec);
        }
        fs::remove_all(path_, ec);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::string str() const { return path_.string(); }
    // Creates the file (and its folders) below the root, with the given bytes.
    std::filesystem::path write(const std::string& relative, const std::string& bytes = "") const {
        std::filesystem::create_directories((path_ / relative).parent_path());
        std::ofstream(path_ / relative, std::ios::binary) << bytes;
        return path_ / relative;
    }
    std::filesystem::path mkdir(const std::string& relative) const {
        std::filesystem::create_directories(path_ / relative);
        return path_ / relative;
    }

    // The bytes of each damaged file copied aside (NAME.bad-TIME) directly in folder.
    static std::vector<std::string> copiesAside(const std::filesystem::path& folder) {
        std::vector<std::string> copies;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (entry.path().filename().string().find(".bad-") != std::string::npos)
                copies.push_back(read(entry.path()));
        return copies;
    }
    // The whole of a file's bytes; empty when it cannot be read.
    static std::string read(const std::filesystem::path& file) {
        std::ifstream in(file, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

  private:
    std::filesystem::path path_;
};
