#include "playback/engine/fileBytes.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <sys/stat.h>

FileBytes readFileBytes(const std::string& path, std::string_view magic) {
    FileBytes read;
    read.file.reset(std::fopen(path.c_str(), "rb"));
    if (!read.file) {
        read.error = FileReadError::Open;
        read.errorNumber = errno;
        return read;
    }
    unsigned char chunk[65536];
    std::size_t got = 0;
    try {
        while ((got = std::fread(chunk, 1, sizeof chunk, read.file.get())) > 0) {
            read.bytes.insert(read.bytes.end(), chunk, chunk + got);
            // Without a magic there is nothing to compare: memcmp must not see its null pointer.
            std::size_t compared = std::min(read.bytes.size(), magic.size());
            if (compared > 0 && std::memcmp(read.bytes.data(), magic.data(), compared) != 0)
                break;
        }
    } catch (const std::bad_alloc&) {
        read.bytes = {};
        read.error = FileReadError::Memory;
        return read;
    }
    if (std::ferror(read.file.get())) { // a folder opens, but reading it fails
        read.error = FileReadError::Read;
        read.errorNumber = errno;
    }
    return read;
}

bool fileHolds(std::FILE* file, std::uint64_t size) {
    struct stat status {};
    return file && fstat(fileno(file), &status) == 0 &&
           static_cast<std::uint64_t>(status.st_size) >= size;
}
