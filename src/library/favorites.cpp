#include "library/favorites.h"

#include "library/libraryState.h"
#include "library/model.h"
#include "util/ascii.h"
#include "util/jsonRows.h"
#include "util/log.h"
#include "util/paths.h"

#include <charconv>
#include <fstream>
#include <nlohmann/json.hpp>
#include <unordered_map>
#include <unordered_set>

namespace {

using Json = nlohmann::json;

bool readRow(const Json& element, FavoriteEntry& row) {
    auto path = element.find("songPath");
    if (path == element.end() || !path->is_string())
        return false;
    const struct {
        const char* name;
        int* field;
    } numbers[] = {{"favoriteCount", &row.favoriteCount},
                   {"plistIndex", &row.plistIndex},
                   {"songIndex", &row.songIndex},
                   {"songType", &row.songType}};
    for (const auto& number : numbers) {
        auto it = element.find(number.name);
        if (it == element.end() || !readJsonInt(*it, *number.field))
            return false;
    }
    row.songPath = path->get<std::string>();
    return true;
}

// A number line of favoriteMusic.cif: empty is 0; anything but a whole 32-bit number is none.
bool readCifNumber(const std::string& line, int& out) {
    if (line.empty()) {
        out = 0;
        return true;
    }
    const char* end = line.data() + line.size();
    auto [stop, error] = std::from_chars(line.data(), end, out);
    return error == std::errc() && stop == end;
}

} // namespace

void rebuildFavorites(LibraryState& st) {
    st.favorites.clear();
    for (std::size_t p = 0; p < st.playlists.size(); ++p) {
        const std::vector<Song>& songs = st.playlists[p].songs;
        for (std::size_t i = 0; i < songs.size(); ++i)
            if (songs[i].isFavorite != 0)
                st.favorites.push_back(FavoriteEntry{favoriteSongTypeOf(songs[i].musicType),
                                                     static_cast<int>(i), static_cast<int>(p),
                                                     songs[i].favoriteCount, songs[i].songPath});
    }
}

void saveFavoritesFile(const LibraryState& st, const std::string& path) {
    Json root; // null without rows
    for (const FavoriteEntry& row : st.favorites)
        root["favorites"].push_back({{"favoriteCount", row.favoriteCount},
                                     {"plistIndex", row.plistIndex},
                                     {"songIndex", row.songIndex},
                                     {"songPath", row.songPath},
                                     {"songType", row.songType}});
    if (!writeJsonFile(path, root))
        logErr("Failed to open %s for writing.\n", path.c_str());
}

void mergeFavoritesFile(LibraryState& st, const std::string& path) {
    JsonRead read;
    std::optional<Json> root = readJsonFile(path, &read);
    if (read == JsonRead::Missing)
        logErr("Failed to open %s for reading.\n", path.c_str());
    if (!root || root->is_null())
        return;
    auto rows = root->is_object() ? root->find("favorites") : root->end();
    if (!root->is_object() || (rows != root->end() && !rows->is_array())) {
        setAsideDamaged(path, "it holds no list of favourites");
        return;
    }
    if (rows == root->end())
        return;
    std::unordered_set<std::string> known;
    for (const FavoriteEntry& row : st.favorites)
        known.insert(asciiLower(row.songPath));
    for (FavoriteEntry& row : readJsonRows<FavoriteEntry>(*rows, path, "rows", readRow))
        if (known.insert(asciiLower(row.songPath)).second) // the older row keeps its count
            st.favorites.push_back(std::move(row));
}

void checkFavoriteFile(LibraryState& st, const std::string& path) {
    if (fileNameOf(path) == "favorite.json")
        mergeFavoritesFile(st, path);
}

void loadOlderFavorites(LibraryState& st) {
    std::ifstream in(joinPath(st.dataDirectory, "/favoriteMusic.cif"), std::ios::binary);
    if (!in) {
        logErr("Failed to open favoriteMusic.cif for reading.\n");
        return;
    }
    st.favorites.clear();
    std::size_t dropped = 0;
    std::string lines[5];
    for (;;) {
        int read = 0;
        for (; read < 5 && std::getline(in, lines[read]); ++read)
            if (!lines[read].empty() && lines[read].back() == '\r')
                lines[read].pop_back(); // written on Windows
        if (read == 0)
            break;
        FavoriteEntry row;
        bool numbers =
            readCifNumber(lines[0], row.songType) && readCifNumber(lines[1], row.songIndex) &&
            readCifNumber(lines[2], row.plistIndex) && readCifNumber(lines[3], row.favoriteCount);
        if (read < 5 || !numbers) {
            ++dropped;
            continue;
        }
        if (lines[4].empty())
            continue;
        row.songPath = lines[4];
        st.favorites.push_back(std::move(row));
    }
    if (dropped > 0)
        logErr("favoriteMusic.cif: %zu rows could not be read and were left out.\n", dropped);
    logOut("Favorites loaded from favoriteMusic.cif.\n");
}

void applyFavorites(LibraryState& st, const std::vector<FavoriteEntry>& rows) {
    if (rows.empty())
        return;
    // Each lower-cased file name leads to the first song of that name in every playlist, so a
    // row costs one lookup rather than a walk over the whole library.
    struct Match {
        std::size_t playlist;
        Song* song;
    };
    std::unordered_map<std::string, std::vector<Match>> byName;
    for (std::size_t p = 0; p < st.playlists.size(); ++p)
        for (Song& song : st.playlists[p].songs) {
            std::vector<Match>& matches =
                byName[asciiLower(std::string(fileNameOf(song.songPath)))];
            if (matches.empty() || matches.back().playlist != p)
                matches.push_back(Match{p, &song});
        }
    for (const FavoriteEntry& row : rows) {
        std::string name = asciiLower(std::string(fileNameOf(row.songPath)));
        auto found = byName.find(name);
        if (found == byName.end()) {
            logOut("Could not find song: %s\n", name.c_str());
            continue;
        }
        for (const Match& match : found->second) {
            match.song->isFavorite = 1;
            match.song->favoriteCount = row.favoriteCount;
        }
    }
}

void clearAllFavorites(LibraryState& st) {
    for (RadioStation& station : st.radioStations)
        station.favorite = station.favoriteCount = 0;
    for (Playlist& playlist : st.playlists) {
        playlist.isFavorite = playlist.favoriteCount = 0;
        for (Song& song : playlist.songs)
            song.isFavorite = song.favoriteCount = 0;
    }
    st.weightedSongTotal = 0;
    st.favoriteSongCount = 0;
    st.favorites.clear();
}

void countFavoriteUp(Song& song) {
    ++song.favoriteCount;
    song.isFavorite = 1;
}

void countFavoriteDown(Song& song) {
    if (song.favoriteCount <= 0)
        return;
    --song.favoriteCount;
    song.isFavorite = song.favoriteCount > 0 ? 1 : 0;
}

void countFavoriteUp(Playlist& playlist) {
    ++playlist.favoriteCount;
    playlist.isFavorite = 1;
}

void countFavoriteDown(Playlist& playlist) {
    if (--playlist.favoriteCount <= 0)
        playlist.isFavorite = 0;
}

void countFavoriteUp(RadioStation& station) {
    ++station.favoriteCount;
    station.favorite = 1;
}

void countFavoriteDown(RadioStation& station) {
    if (--station.favoriteCount <= 0)
        station.favorite = 0;
}
