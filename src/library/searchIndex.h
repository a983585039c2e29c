#pragma once
#include "library/records.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// The library's titles and paths lower-cased once, so that a key of the type-ahead search is one
// pass over one text instead of two lower-casings and a title per song. Song i's text is
// "title\npath\n" and ends at ends[i]; a search text never holds a line end, so no match spans
// two songs or a title and its path.
struct SearchIndex {
    bool built = false;
    std::string text;
    std::vector<std::size_t> ends;
    std::vector<SongRef> songs;
};

SearchIndex makeSearchIndex(const std::vector<Playlist>& playlists);
// The songs whose lower-cased title or path contains needle (lower-case), in library order; an
// empty needle finds every song.
std::vector<SongRef> findSongs(const SearchIndex& index, std::string_view needle);
