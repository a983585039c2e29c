#include "fuzz/fuzzTarget.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

// Function-local, so that registrations from other files' static initialisers find it made.
std::vector<FuzzTarget>& registry() {
    static std::vector<FuzzTarget> targets;
    return targets;
}

std::string readAll(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// A folder made with mkdtemp, removed with its content when the process ends normally. A
// libFuzzer crash skips that, and leaves the folder for a person to look into.
class PrivateFolder {
  public:
    explicit PrivateFolder(const char* role) {
        std::error_code ec;
        fs::path base =
            fs::is_directory("/dev/shm", ec) ? fs::path("/dev/shm") : fs::temp_directory_path();
        std::string pattern = (base / (std::string("mtr-fuzz-") + role + "-XXXXXX")).string();
        if (!::mkdtemp(pattern.data()))
            throw std::runtime_error("mkdtemp failed for " + pattern);
        path_ = pattern;
    }
    ~PrivateFolder() {
        std::error_code ec;
        fs::remove_all(path_, ec);
    }
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

void emptyFolder(const std::string& folder) {
    std::error_code ec;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, ec))
        fs::remove_all(entry.path(), ec);
}

} // namespace

bool registerFuzzTarget(const char* name, FuzzFunction run) {
    registry().push_back({name, run});
    return true;
}

FuzzFunction findFuzzTarget(std::string_view name) {
    for (const FuzzTarget& target : registry())
        if (name == target.name)
            return target.run;
    return nullptr;
}

std::vector<FuzzTarget> fuzzTargets() {
    std::vector<FuzzTarget> targets = registry();
    std::ranges::sort(targets, [](const FuzzTarget& a, const FuzzTarget& b) {
        return std::string_view(a.name) < b.name;
    });
    return targets;
}

const std::string& fuzzFolder() {
    static PrivateFolder folder("input");
    return folder.path();
}

const std::string& fuzzFixtureFolder() {
    static PrivateFolder folder("fixtures");
    return folder.path();
}

void fuzzFailure(const std::string& what) {
    std::fprintf(stderr, "fuzz target failed: %s\n", what.c_str());
    std::abort();
}

FuzzFile::FuzzFile(const std::string& name, std::string_view bytes, bool mayChange)
    : path_(fuzzFolder() + "/" + name), bytes_(bytes), mayChange_(mayChange) {
    emptyFolder(fuzzFolder());
    std::ofstream out(path_, std::ios::binary);
    out.write(bytes_.data(), static_cast<std::streamsize>(bytes_.size()));
    if (!out.flush())
        fuzzFailure("cannot write " + path_);
}

FuzzFile::~FuzzFile() {
    std::string name = fs::path(path_).filename().string();
    if (!mayChange_ && readAll(path_) != bytes_)
        fuzzFailure("the reader changed " + path_);
    std::error_code ec;
    for (const fs::directory_entry& entry : fs::directory_iterator(fuzzFolder(), ec)) {
        std::string other = entry.path().filename().string();
        if (other.starts_with(name + ".bad-") && readAll(entry.path()) != bytes_)
            fuzzFailure("the copy set aside differs from the file: " + other);
    }
    emptyFolder(fuzzFolder());
}

std::string fuzzSavePath(const std::string& round, const std::string& input) {
    fs::path folder = fs::path(fuzzFolder()) / "saved" / round;
    std::error_code ec;
    fs::create_directories(folder, ec);
    return (folder / fs::path(input).filename()).string();
}

void expectSameSaves(const std::string& first, const std::string& second) {
    std::error_code ec;
    for (const fs::directory_entry& entry :
         fs::directory_iterator(fs::path(first).parent_path(), ec))
        if (entry.path().filename().string().find(".bad-") != std::string::npos)
            fuzzFailure("a saved file does not read back whole: " + entry.path().string());
    if (readAll(first) != readAll(second))
        fuzzFailure("saving what was read back changes the file: " + first + " and " + second);
}

std::string_view FuzzChunks::next() {
    state_ = state_ * 1103515245u + 12345u;
    std::size_t size = std::min<std::size_t>(1 + (state_ >> 16) % 300, rest_.size());
    std::string_view chunk = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return chunk;
}
