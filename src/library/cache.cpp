#include "library/cache.h"

#include "core/log.h"
#include "core/playerState.h"
#include "settings/jsonFile.h"
#include "settings/musicSettings.h"

#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::json;

// What a damaged file cost, told in one line once the whole file has been read.
struct Damage {
    std::size_t playlists = 0;
    std::size_t songs = 0;
    std::size_t keys = 0;
};

bool readSong(const Json& element, Song& song) {
    if (!element.is_object())
        return false;
    auto path = element.find("songPath");
    if (path == element.end() || !path->is_string())
        return false;
    const struct {
        const char* name;
        int* field;
    } numbers[] = {{"favoriteCount", &song.favoriteCount},
                   {"isFavorite", &song.isFavorite},
                   {"musicType", &song.musicType},
                   {"playCount", &song.playCount}};
    for (const auto& number : numbers) {
        auto it = element.find(number.name);
        if (it == element.end() || !readJsonInt(*it, *number.field))
            return false;
    }
    song.songPath = path->get<std::string>();
    return true;
}

// An optional key of a playlist: absent is 0 (files of older builds), wrong is 0 and noted.
void readOptional(const Json& element, const char* name, int& field, Damage& damage) {
    auto it = element.find(name);
    if (it != element.end() && !readJsonInt(*it, field)) {
        field = 0;
        ++damage.keys;
    }
}

bool readPlaylist(const Json& element, Playlist& playlist, Damage& damage) {
    if (!element.is_object())
        return false;
    auto album = element.find("albumName");
    if (album == element.end() || !album->is_string())
        return false;
    playlist.albumName = album->get<std::string>();
    readOptional(element, "iRadioMode", playlist.iRadioMode, damage);
    readOptional(element, "favoriteCount", playlist.favoriteCount, damage);
    readOptional(element, "isFavorite", playlist.isFavorite, damage);
    // The writer leaves the key out when every song of the playlist was left out.
    auto songs = element.find("songs");
    if (songs != element.end()) {
        if (!songs->is_array())
            return false;
        playlist.songs.reserve(songs->size());
        for (const Json& item : *songs) {
            Song song;
            if (readSong(item, song))
                playlist.songs.push_back(std::move(song));
            else
                ++damage.songs;
        }
    }
    playlist.songCount = static_cast<int>(playlist.songs.size());
    return true;
}

std::string describe(const Damage& damage) {
    std::string text;
    auto add = [&text](std::size_t count, const char* what) {
        if (count == 0)
            return;
        text += text.empty() ? "" : ", ";
        text += std::to_string(count) + what;
    };
    add(damage.playlists, " playlists could not be read and were left out");
    add(damage.songs, " songs could not be read and were left out");
    add(damage.keys, " playlist values could not be read and are 0");
    return text;
}

} // namespace

std::vector<Playlist> loadLibraryCache(PlayerState& st) {
    std::vector<Playlist> result;
    std::optional<Json> root = readJsonFile(st.libraryCachePath);
    if (!root || root->is_null())
        return result;
    if (!root->is_object()) {
        setAsideDamaged(st.libraryCachePath, "the library is not a JSON object");
        return result;
    }
    auto playlists = root->find("playlists");
    if (playlists == root->end())
        return result;
    if (!playlists->is_array()) {
        setAsideDamaged(st.libraryCachePath, "its playlists are not a list");
        return result;
    }
    Damage damage;
    result.reserve(playlists->size());
    for (const Json& element : *playlists) {
        Playlist playlist;
        if (readPlaylist(element, playlist, damage))
            result.push_back(std::move(playlist));
        else
            ++damage.playlists;
    }
    std::string why = describe(damage);
    if (!why.empty())
        setAsideDamaged(st.libraryCachePath, why);
    return result;
}

void saveLibraryCache(PlayerState& st) {
    Json root; // null for an empty library
    for (const Playlist& playlist : st.playlists) {
        Json entry = {{"albumName", playlist.albumName},
                      {"iRadioMode", playlist.iRadioMode},
                      {"favoriteCount", playlist.favoriteCount},
                      {"isFavorite", playlist.isFavorite}};
        for (const Song& song : playlist.songs) {
            // A path that is not UTF-8 cannot stand in JSON without changing its bytes, and a
            // changed path would name another file: the song waits for the next scan.
            if (!isValidUtf8(song.songPath)) {
                logErr("Not saved in the library cache, its path is not UTF-8: %s\n",
                       song.songPath.c_str());
                continue;
            }
            entry["songs"].push_back({{"favoriteCount", song.favoriteCount},
                                      {"isFavorite", song.isFavorite},
                                      {"musicType", song.musicType},
                                      {"playCount", song.playCount},
                                      {"songPath", song.songPath}});
        }
        root["playlists"].push_back(std::move(entry));
    }
    if (!writeJsonFile(st.libraryCachePath, root))
        logErr("Failed to open %s for writing.\n", st.libraryCachePath.c_str());
    // Until the start-up has read the stored settings, the working fields hold defaults.
    if (!st.settingsSaveHeld)
        saveMusicSettings(st);
}
