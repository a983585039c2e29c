#pragma once
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, CloseFile>;

enum class FileReadError { None, Open, Read, Memory };

// A file read whole by a decoder that parses it in memory. The file stays open, so that a decoder
// can watch whether it was cut short while it plays.
struct FileBytes {
    std::vector<unsigned char> bytes;
    FilePtr file;
    FileReadError error = FileReadError::None;
    int errorNumber = 0; // errno of Open and Read
};

// The whole file; or, when it does not start with `magic`, as much as it takes to see that, so
// that an album's worth of audio under a wrong name is not read for nothing. Never throws.
FileBytes readFileBytes(const std::string& path, std::string_view magic = {});

// Whether the open file still has at least `size` bytes (fstat, so it follows the file that was
// opened even when its name now leads elsewhere).
bool fileHolds(std::FILE* file, std::uint64_t size);
