#include "library/rebuild.h"

#include "core/log.h"
#include "core/playerState.h"
#include "library/cache.h"
#include "library/folderListing.h"
#include "library/scan.h"

#include <cstring>

void rebuildLibrary(PlayerState& st) {
    st.playlists.clear();
    st.scanSongCount = 0;
    st.scanPlaylistCount = 0;
    for (const std::string& root : st.directoryPaths) {
        std::vector<Playlist> found = scanRoot(st, root);
        st.playlists.insert(st.playlists.end(), std::make_move_iterator(found.begin()),
                            std::make_move_iterator(found.end()));
    }
    saveLibraryCache(st);
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
