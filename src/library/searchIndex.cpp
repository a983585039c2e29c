#include "library/searchIndex.h"

#include "library/model.h"
#include "util/ascii.h"

#include <cstring>

namespace {

void appendLowerCased(std::string& text, std::string_view part) {
    const std::size_t from = text.size();
    text.append(part);
    for (std::size_t i = from; i < text.size(); ++i)
        text[i] = toLowerAscii(text[i]);
    text += '\n';
}

} // namespace

SearchIndex makeSearchIndex(const std::vector<Playlist>& playlists) {
    SearchIndex index;
    index.built = true;
    std::size_t songs = 0;
    for (const Playlist& playlist : playlists)
        songs += playlist.songs.size();
    index.ends.reserve(songs);
    index.songs.reserve(songs);
    for (std::size_t p = 0; p < playlists.size(); ++p)
        for (std::size_t s = 0; s < playlists[p].songs.size(); ++s) {
            const std::string& path = playlists[p].songs[s].songPath;
            appendLowerCased(index.text, titleFromPath(path));
            appendLowerCased(index.text, path);
            index.ends.push_back(index.text.size());
            index.songs.push_back({static_cast<int>(p), static_cast<int>(s)});
        }
    return index;
}

std::vector<SongRef> findSongs(const SearchIndex& index, std::string_view needle) {
    if (needle.empty())
        return index.songs;
    std::vector<SongRef> found;
    const char* text = index.text.data();
    std::size_t from = 0;
    std::size_t song = 0;
    // glibc's memmem skips through the text many times faster than a search for the first byte.
    while (const void* hit =
               memmem(text + from, index.text.size() - from, needle.data(), needle.size())) {
        // The song holding the match, found walking on; the search goes on after its text.
        const auto at = static_cast<std::size_t>(static_cast<const char*>(hit) - text);
        while (index.ends[song] <= at)
            ++song;
        found.push_back(index.songs[song]);
        from = index.ends[song];
    }
    return found;
}
