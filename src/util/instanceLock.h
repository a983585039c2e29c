#pragma once
#include "util/plainFile.h"

#include <string>

// One player per data folder. Two players in one folder would overwrite each other's files, so
// the first holds a kernel lock on a file of its own there; the kernel lets go of it when the
// process ends, however it ends, so a stale lock never blocks a start.
enum class FolderLock {
    Held,          // this process is the folder's player
    HeldByAnother, // another process is
    Unavailable    // no lock file could be made (a read-only folder): start anyway
};
struct DataFolderLock {
    FolderLock state = FolderLock::Unavailable;
    FileDescriptor file; // open for as long as the lock is held
    std::string reason;  // why it is unavailable
};
DataFolderLock lockDataFolder(const std::string& folder);

// Where a second start finds the first to ask it for its window: a socket in the user's runtime
// folder (the temporary folder without one), named from the folder's canonical path, so that a
// link to the folder is the same folder.
std::string instanceSocketPath(const std::string& folder);
