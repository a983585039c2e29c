#include "library/rebuild.h"

#include "library/cache.h"
#include "library/folderListing.h"
#include "library/libraryState.h"
#include "library/scan.h"
#include "util/log.h"
#include "util/paths.h"

#include <algorithm>
#include <cstring>

void scanAllRoots(LibraryState& st) {
    st.playlists.clear();
    st.searchIndex = {};
    st.unreadableRoots.clear();
    st.scanSongCount = 0;
    st.scanPlaylistCount = 0;
    for (const std::string& root : st.directoryPaths) {
        std::vector<Playlist> found = scanRoot(st, root);
        st.playlists.insert(st.playlists.end(), std::make_move_iterator(found.begin()),
                            std::make_move_iterator(found.end()));
    }
}

namespace {

// Where ROOT/ALBUM/ could begin in path: every root the path allows, shortest first.
std::vector<std::string> rootCandidates(const std::string& path, const std::string& album) {
    std::vector<std::string> roots;
    std::string middle = "/" + album + "/";
    for (std::size_t at = path.find(middle); at != std::string::npos;
         at = path.find(middle, at + 1))
        roots.push_back(at == 0 ? std::string("/") : path.substr(0, at));
    return roots;
}

} // namespace

std::vector<std::string> rootsOfLibrary(const std::vector<Playlist>& playlists) {
    std::vector<std::string> roots;
    for (const Playlist& playlist : playlists) {
        if (playlist.songs.empty() || playlist.albumName.empty())
            continue;
        // A folder inside the album may share its name; the root is one all songs agree on.
        std::vector<std::string> common =
            rootCandidates(playlist.songs.front().songPath, playlist.albumName);
        for (const Song& song : playlist.songs) {
            std::vector<std::string> mine = rootCandidates(song.songPath, playlist.albumName);
            std::erase_if(common, [&mine](const std::string& root) {
                return std::find(mine.begin(), mine.end(), root) == mine.end();
            });
        }
        if (!common.empty() && std::find(roots.begin(), roots.end(), common.front()) == roots.end())
            roots.push_back(common.front());
    }
    return roots;
}

std::vector<std::string> scanSoundFonts(const std::string& folder) {
    FolderListing listing = listFolder(folder, LinkPolicy::Follow);
    std::vector<std::string> fonts;
    std::string prefix = folder;
    if (!prefix.empty() && prefix.back() != '/')
        prefix += '/';
    for (const FolderEntry& entry : listing.entries)
        if (entry.kind == EntryKind::File && extensionOfName(listing.nameOf(entry)) == ".sf2")
            fonts.push_back(prefix + std::string(listing.nameOf(entry)));
    if (listing.error != 0)
        logErr("Filesystem error: %s: %s\n", folder.c_str(), std::strerror(listing.error));
    return fonts;
}
