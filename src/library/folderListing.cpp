#include "library/folderListing.h"

#include "util/ascii.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace {

EntryKind kindOfTarget(int folderFd, const char* name, LinkPolicy links) {
    struct stat target;
    if (::fstatat(folderFd, name, &target, 0) != 0)
        return EntryKind::Other; // dangling
    if (S_ISREG(target.st_mode))
        return EntryKind::File;
    if (S_ISDIR(target.st_mode) && links == LinkPolicy::Follow)
        return EntryKind::Folder;
    return EntryKind::Other;
}

// Most file systems fill d_type, so a stat is needed only for links and for the few that do not.
EntryKind kindOf(int folderFd, const dirent& entry, LinkPolicy links) {
    unsigned char type = entry.d_type;
    if (type == DT_UNKNOWN) {
        struct stat own;
        if (::fstatat(folderFd, entry.d_name, &own, AT_SYMLINK_NOFOLLOW) != 0)
            return EntryKind::Other;
        type = S_ISREG(own.st_mode)   ? DT_REG
               : S_ISDIR(own.st_mode) ? DT_DIR
               : S_ISLNK(own.st_mode) ? DT_LNK
                                      : DT_UNKNOWN;
    }
    switch (type) {
    case DT_REG:
        return EntryKind::File;
    case DT_DIR:
        return EntryKind::Folder;
    case DT_LNK:
        return kindOfTarget(folderFd, entry.d_name, links);
    default:
        return EntryKind::Other;
    }
}

bool isDotOrDotDot(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

} // namespace

FolderListing listFolder(const std::string& path, LinkPolicy links) {
    FolderListing listing;
    DIR* folder = ::opendir(path.c_str());
    if (!folder) {
        listing.error = errno;
        return listing;
    }
    int folderFd = ::dirfd(folder);
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(folder);
        if (!entry) {
            listing.error = errno;
            break;
        }
        if (isDotOrDotDot(entry->d_name))
            continue;
        std::string_view name = entry->d_name;
        listing.entries.push_back({static_cast<std::uint32_t>(listing.names.size()),
                                   static_cast<std::uint32_t>(name.size()),
                                   kindOf(folderFd, *entry, links)});
        listing.names += name;
    }
    ::closedir(folder);
    std::sort(listing.entries.begin(), listing.entries.end(),
              [&listing](const FolderEntry& a, const FolderEntry& b) {
                  return sortsBefore(listing.nameOf(a), listing.nameOf(b));
              });
    return listing;
}

bool sortsBefore(std::string_view a, std::string_view b) {
    size_t common = std::min(a.size(), b.size());
    for (size_t i = 0; i < common; ++i) {
        unsigned char x = static_cast<unsigned char>(toUpperAscii(a[i]));
        unsigned char y = static_cast<unsigned char>(toUpperAscii(b[i]));
        if (x != y)
            return x < y;
    }
    if (a.size() != b.size())
        return a.size() < b.size();
    return a < b;
}
