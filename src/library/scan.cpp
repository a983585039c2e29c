#include "library/scan.h"

#include "library/cache.h"
#include "library/favorites.h"
#include "library/folderListing.h"
#include "library/libraryState.h"
#include "library/model.h"
#include "util/ascii.h"
#include "util/log.h"
#include "util/paths.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>

namespace {

void reportUnreadable(const std::string& path, int error) {
    logErr("Failed to process file: %s: %s\n", path.c_str(), std::strerror(error));
}

// The scan accepts any case of an extension; classifyExtension itself does not.
MusicType songTypeOfName(std::string_view name) {
    return classifyExtension(asciiLower(std::string(extensionOfName(name))));
}

void addFile(LibraryState& st, const std::string& path, std::string_view name, Playlist& playlist) {
    checkFavoriteFile(st, path);
    MusicType type = songTypeOfName(name);
    if (type == musicTypeUnknown)
        return;
    Song song;
    song.songPath = path;
    song.musicType = type;
    playlist.songs.push_back(std::move(song));
    ++st.scanSongCount;
}

// Depth first, a sub-folder's songs where the sub-folder sorts among the files. path is the
// folder on entry and is given back unchanged; it grows in place to spare an allocation a file.
// An unreadable folder loses only its own songs: the walk goes on with its siblings.
void walkFolder(LibraryState& st, std::string& path, Playlist& playlist) {
    FolderListing listing = listFolder(path, LinkPolicy::FilesOnly);
    if (listing.error != 0)
        reportUnreadable(path, listing.error);
    size_t folderLength = path.size();
    for (const FolderEntry& entry : listing.entries) {
        if (entry.kind == EntryKind::Other)
            continue;
        path.resize(folderLength);
        path += '/';
        path += listing.nameOf(entry);
        if (entry.kind == EntryKind::File)
            addFile(st, path, listing.nameOf(entry), playlist);
        else
            walkFolder(st, path, playlist);
    }
    path.resize(folderLength);
}

} // namespace

std::vector<Playlist> scanRoot(LibraryState& st, const std::string& root) {
    struct stat info;
    int error = 0;
    if (root.empty())
        error = ENOENT;
    else if (::stat(root.c_str(), &info) != 0)
        error = errno;
    else if (!S_ISDIR(info.st_mode))
        error = ENOTDIR;
    if (error != 0) {
        logErr("Directory does not exist or is not a directory: %s\n", root.c_str());
        st.unreadableRoots.push_back(root + " (" + std::strerror(error) + ")");
        return {};
    }
    // A link directly in the root is taken as what it points to, so that an album folder linked
    // into the root is a playlist; below that level the walk follows no folder link.
    FolderListing top = listFolder(root, LinkPolicy::Follow);
    if (top.error != 0) {
        reportUnreadable(root, top.error);
        st.unreadableRoots.push_back(root + " (" + std::strerror(top.error) + ")");
    }
    std::string prefix = root;
    if (prefix.back() != '/')
        prefix += '/';

    for (const FolderEntry& entry : top.entries)
        if (entry.kind == EntryKind::File)
            checkFavoriteFile(st, prefix + std::string(top.nameOf(entry)));

    std::vector<Playlist> result;
    for (const FolderEntry& entry : top.entries) {
        if (entry.kind != EntryKind::Folder)
            continue;
        Playlist playlist;
        playlist.albumName = top.nameOf(entry);
        std::string path = prefix + playlist.albumName;
        walkFolder(st, path, playlist);
        if (playlist.songs.empty())
            continue;
        playlist.songCount = static_cast<int>(playlist.songs.size());
        result.push_back(std::move(playlist));
        ++st.scanPlaylistCount;
    }
    return result;
}

void scanDefaultMusicFolder(LibraryState& st) {
    st.playlists.clear();
    st.searchIndex = {};
    st.unreadableRoots.clear();
    st.scanSongCount = 0;
    st.scanPlaylistCount = 0;
    st.playlists = scanRoot(st, defaultMusicFolder());
}

std::string defaultMusicFolder() {
    std::error_code error;
    std::filesystem::path current = std::filesystem::current_path(error);
    if (error)
        return "Music"; // the current directory was removed: still relative to it
    return joinPath(current.string(), "/Music");
}
