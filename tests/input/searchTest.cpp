#include "input/search.h"

#include "core/playerState.h"
#include "core/windowEvents.h"
#include "display/pages.h"
#include "library/model.h"
#include "library/searchIndex.h"
#include "support/recordingPlatform.h"
#include "util/ascii.h"

#include <gtest/gtest.h>
#include <random>

namespace {

Playlist playlistOf(const std::string& album, const std::vector<std::string>& paths) {
    Playlist playlist{album, {}, 0};
    for (const std::string& path : paths)
        playlist.songs.push_back(Song{path, 1, 0, 1, musicTypeMidi});
    playlist.songCount = static_cast<int>(paths.size());
    return playlist;
}

// The keys as the 30 ms tick reads them from the keyboard, one state a tick.
class Search : public testing::Test {
  protected:
    Search() {
        st.playlists = {
            playlistOf("A", {"/m/Rock Hits/abc_song.mid", "/m/Rock Hits/my_oldSong.mid"}),
            playlistOf("B", {"/m/Jazz/blue.mid"})};
        toggleSearchPage(st);
    }
    void keys(std::set<int> down) {
        platform.keysDown = std::move(down);
        onTimer(st, host::timerPoll);
    }
    void type(const std::string& text) {
        for (char c : text) {
            keys({c});
            keys({});
        }
    }
    PlayerState st;
    RecordingPlatform platform;
};

TEST_F(Search, TypedKeysBuildTheTextAndEveryKeySearchesTitlesAndPathsWhateverTheirCase) {
    const std::tuple<std::string, std::vector<SongRef>> cases[] = {
        {"ABC", {{0, 0}}},          // abc_song, in capitals
        {"SONG", {{0, 0}, {0, 1}}}, // the title and the path
        {"OLD SONG", {{0, 1}}},     // only the title "My Old Song" has the blank
        {"ROCK", {{0, 0}, {0, 1}}}, // a folder's name
    };
    for (const auto& [text, found] : cases) {
        type(text);
        EXPECT_EQ(st.searchText, text);
        EXPECT_EQ(st.searchResults, found) << text;
        keys({13}); // Enter searches once more, then empties the text; the results stay
        EXPECT_EQ(st.searchText, "");
        EXPECT_EQ(st.searchResults, found) << text;
    }
    keys({8}); // Backspace on nothing searches with an empty needle: every song
    EXPECT_EQ(st.searchResults.size(), 3u);
}

TEST_F(Search, AHeldKeyCountsOnceTheTextStopsAt255AndALatchOutlivesThePage) {
    keys({'A', ' '});
    keys({'A', ' '});
    EXPECT_EQ(st.searchText, "A ");
    keys({});
    st.searchText = std::string(255, 'X');
    st.lcdDirty = false;
    keys({'B'});
    EXPECT_EQ(st.searchText.size(), 255u); // refused, and searched all the same
    EXPECT_TRUE(st.lcdDirty);

    toggleSearchPage(st); // closed with B down
    keys({'B'});
    toggleSearchPage(st);
    keys({'B'});
    EXPECT_EQ(st.searchText, ""); // still the same press
    keys({});
    keys({'B'});
    EXPECT_EQ(st.searchText, "B");
}

// The index answers as the two tests on each song would: the lower-cased title and path.
TEST(SearchIndex, FindsWhatTheTitleAndPathTestsFindOnALargeLibrary) {
    std::mt19937 rng(7);
    const char* words[] = {"rock", "Jazz", "my_old", "Song", "blue_Sky", "x", "the End"};
    std::vector<Playlist> library;
    for (int p = 0; p < 100; ++p) {
        std::vector<std::string> paths;
        for (int s = 0; s < 100; ++s)
            paths.push_back("/music/" + std::string(words[rng() % 7]) + " " + std::to_string(p) +
                            "/" + words[rng() % 7] + words[rng() % 7] + ".mid");
        library.push_back(playlistOf("P", paths));
    }
    const SearchIndex index = makeSearchIndex(library);
    for (const char* text : {"ROCK", "OLD SONG", "SONG", "D S", "JAZZ 1", "X", " ", "E END", "Q"}) {
        const std::string needle = asciiLower(text);
        std::vector<SongRef> literal;
        for (int p = 0; p < 100; ++p)
            for (int s = 0; s < 100; ++s) {
                const std::string& path = library[p].songs[s].songPath;
                if (asciiLower(titleFromPath(path)).find(needle) != std::string::npos ||
                    asciiLower(path).find(needle) != std::string::npos)
                    literal.push_back({p, s});
            }
        EXPECT_EQ(findSongs(index, needle), literal) << text;
    }
}

} // namespace
