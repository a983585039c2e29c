#include "input/search.h"

#include "input/inputState.h"
#include "util/ascii.h"

namespace {

constexpr std::size_t maxSearchText = 255;
constexpr int vkBackspace = 8;
constexpr int vkEnter = 13;
constexpr int vkSpace = 32;

void pressSearchKey(InputState& st, int vk) {
    if (vk == vkBackspace) {
        if (!st.searchText.empty())
            st.searchText.pop_back();
        runSongSearch(st);
    } else if (vk == vkEnter) {
        runSongSearch(st);
        st.searchText.clear();
    } else {
        if (st.searchText.size() < maxSearchText)
            st.searchText += static_cast<char>(vk);
        runSongSearch(st);
    }
}

} // namespace

void pollSearchKeys(InputState& st, const KeysDown& down) {
    static constexpr int order[] = {'A', 'B', 'C', 'D', 'E', 'F', 'G',         'H',     'I',    'J',
                                    'K', 'L', 'M', 'N', 'O', 'P', 'Q',         'R',     'S',    'T',
                                    'U', 'V', 'W', 'X', 'Y', 'Z', vkBackspace, vkEnter, vkSpace};
    for (int vk : order) {
        if (!down[vk]) {
            st.searchKeyLatch[vk] = false;
        } else if (!st.searchKeyLatch[vk]) {
            st.searchKeyLatch[vk] = true;
            pressSearchKey(st, vk);
        }
    }
}

void prepareSongSearch(InputState& st) {
    st.searchIndex = makeSearchIndex(st.playlists);
}

void runSongSearch(InputState& st) {
    // A rescan while the page is open dropped the texts of the library before.
    if (!st.searchIndex.built)
        prepareSongSearch(st);
    st.searchResults = findSongs(st.searchIndex, asciiLower(st.searchText));
    st.lcdDirty = true;
}
