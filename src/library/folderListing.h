#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// What an entry of a folder is for the scans. A link counts as what it points to, as far as the
// caller's LinkPolicy allows; a dangling link, a device or a socket is Other.
enum class EntryKind { File, Folder, Other };

// Follow: a link to a folder is a Folder (the top of a root, the soundfont folder).
// FilesOnly: a link to a file is a File, a link to a folder is Other, so a walk never leaves the
// tree it was given and cannot loop.
enum class LinkPolicy { Follow, FilesOnly };

// The names of a listing share one buffer: a scan lists thousands of folders, and sorting small
// entries moves less than sorting strings.
struct FolderEntry {
    std::uint32_t nameStart = 0;
    std::uint32_t nameLength = 0;
    EntryKind kind = EntryKind::Other;
};

struct FolderListing {
    std::string names;
    std::vector<FolderEntry> entries; // sorted by sortsBefore, without "." and ".."
    int error = 0;                    // errno of a failed open or read; entries holds what was read

    std::string_view nameOf(const FolderEntry& entry) const {
        return {names.data() + entry.nameStart, entry.nameLength};
    }
};

// One folder, not recursive. ext4 lists a folder in hash order, so the entries are sorted: the
// library then reads in the same order on every machine.
FolderListing listFolder(const std::string& path, LinkPolicy links);

// Case-insensitive for ASCII letters, then by raw bytes so that the order is total.
bool sortsBefore(std::string_view a, std::string_view b);
