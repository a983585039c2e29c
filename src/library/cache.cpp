#include "library/cache.h"

#include "library/libraryState.h"
#include "util/jsonEvents.h"
#include "util/jsonFile.h"
#include "util/log.h"
#include "util/utf8.h"

#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::json;

// What a damaged file cost, told in one line once the whole file has been read.
struct Damage {
    std::size_t playlists = 0;
    std::size_t songs = 0;
    std::size_t keys = 0;
};

// Reads the cache as the parser walks it, into the playlists themselves: a library of 100,000
// songs would otherwise first become a document several times its own size. A playlist or song
// is kept at the end of its object, whole, or counted as damage.
class CacheReader : public ScalarJsonEvents {
  public:
    std::vector<Playlist> playlists;
    Damage damage;
    std::string rootProblem;

    bool string(string_t& value) override {
        if (skipping_ > 0)
            return true;
        switch (at_) {
        case At::AlbumValue:
            playlist_.albumName = value;
            hasAlbum_ = true;
            at_ = At::PlaylistObject;
            return true;
        case At::SongValue:
            if (songKey_ == pathKey) {
                song_.songPath = value;
                songKeys_ |= 1u << pathKey;
            } else {
                songKeys_ &= ~(1u << songKey_);
            }
            at_ = At::SongObject;
            return true;
        default:
            return scalar(Json());
        }
    }

    bool start_object(std::size_t) override {
        if (skipping_ > 0 || skipNext_) {
            startSkipping();
            return true;
        }
        switch (at_) {
        case At::Root:
            at_ = At::RootObject;
            return true;
        case At::PlaylistsArray:
            playlist_ = Playlist{};
            hasAlbum_ = false;
            songsBroken_ = false;
            at_ = At::PlaylistObject;
            return true;
        case At::SongsArray:
            song_ = Song{};
            songKeys_ = 0;
            at_ = At::SongObject;
            return true;
        default:
            wrongValue();
            startSkipping();
            return true;
        }
    }

    bool key(string_t& name) override {
        if (skipping_ > 0)
            return true;
        switch (at_) {
        case At::RootObject:
            if (name == "playlists")
                at_ = At::PlaylistsValue;
            else
                skipNext_ = true;
            return true;
        case At::PlaylistObject:
            if (name == "albumName") {
                at_ = At::AlbumValue;
            } else if (name == "songs") {
                at_ = At::SongsValue;
            } else {
                playlistKey_ = name == "iRadioMode"      ? &playlist_.iRadioMode
                               : name == "favoriteCount" ? &playlist_.favoriteCount
                               : name == "isFavorite"    ? &playlist_.isFavorite
                                                         : nullptr;
                if (playlistKey_)
                    at_ = At::PlaylistValue;
                else
                    skipNext_ = true;
            }
            return true;
        case At::SongObject:
            songKey_ = songKeyIndex(name);
            if (songKey_ >= 0)
                at_ = At::SongValue;
            else
                skipNext_ = true;
            return true;
        default:
            return true;
        }
    }

    bool end_object() override {
        if (skipping_ > 0) {
            --skipping_;
            return true;
        }
        switch (at_) {
        case At::RootObject:
            at_ = At::Done;
            break;
        case At::PlaylistObject:
            if (hasAlbum_ && !songsBroken_) {
                playlist_.songCount = static_cast<int>(playlist_.songs.size());
                playlists.push_back(std::move(playlist_));
            } else {
                ++damage.playlists;
            }
            at_ = At::PlaylistsArray;
            break;
        case At::SongObject:
            if (songKeys_ == allSongKeys)
                playlist_.songs.push_back(std::move(song_));
            else
                ++damage.songs;
            at_ = At::SongsArray;
            break;
        default:
            break;
        }
        return true;
    }

    bool start_array(std::size_t) override {
        if (skipping_ > 0 || skipNext_) {
            startSkipping();
            return true;
        }
        switch (at_) {
        case At::PlaylistsValue:
            at_ = At::PlaylistsArray;
            return true;
        case At::SongsValue:
            at_ = At::SongsArray;
            return true;
        default:
            wrongValue();
            startSkipping();
            return true;
        }
    }

    bool end_array() override {
        if (skipping_ > 0) {
            --skipping_;
            return true;
        }
        if (at_ == At::PlaylistsArray)
            at_ = At::RootObject;
        else if (at_ == At::SongsArray)
            at_ = At::PlaylistObject;
        return true;
    }

    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override {
        return false;
    }

  private:
    enum class At {
        Root,
        RootObject,
        PlaylistsValue,
        PlaylistsArray,
        PlaylistObject,
        AlbumValue,
        PlaylistValue,
        SongsValue,
        SongsArray,
        SongObject,
        SongValue,
        Done
    };
    static constexpr int pathKey = 4;
    static constexpr unsigned allSongKeys = 0x1f;

    static int songKeyIndex(const string_t& name) {
        static const char* const names[] = {"favoriteCount", "isFavorite", "musicType", "playCount",
                                            "songPath"};
        for (int i = 0; i < 5; ++i)
            if (name == names[i])
                return i;
        return -1;
    }

    int* songField(int key) {
        int* fields[] = {&song_.favoriteCount, &song_.isFavorite, &song_.musicType,
                         &song_.playCount};
        return fields[key];
    }

    void startSkipping() {
        skipNext_ = false;
        ++skipping_;
    }

    // A value that is not what its place asks for (a string, a number and null alike).
    void wrongValue() {
        switch (at_) {
        case At::Root:
            rootProblem = "the library is not a JSON object";
            at_ = At::Done;
            break;
        case At::PlaylistsValue:
            rootProblem = "its playlists are not a list";
            at_ = At::RootObject;
            break;
        case At::PlaylistsArray:
            ++damage.playlists;
            break;
        case At::AlbumValue:
            hasAlbum_ = false;
            at_ = At::PlaylistObject;
            break;
        case At::PlaylistValue:
            *playlistKey_ = 0;
            ++damage.keys;
            at_ = At::PlaylistObject;
            break;
        case At::SongsValue:
            songsBroken_ = true;
            at_ = At::PlaylistObject;
            break;
        case At::SongsArray:
            ++damage.songs;
            break;
        case At::SongValue:
            songKeys_ &= ~(1u << songKey_);
            at_ = At::SongObject;
            break;
        default:
            break;
        }
    }

    bool scalar(const Json& value) override {
        if (skipping_ > 0)
            return true;
        if (skipNext_) {
            skipNext_ = false;
            return true;
        }
        if (at_ == At::Root && value.is_null()) {
            at_ = At::Done; // the word null: an empty library
        } else if (at_ == At::PlaylistValue && readJsonInt(value, *playlistKey_)) {
            at_ = At::PlaylistObject;
        } else if (at_ == At::SongValue && songKey_ != pathKey &&
                   readJsonInt(value, *songField(songKey_))) {
            songKeys_ |= 1u << songKey_;
            at_ = At::SongObject;
        } else {
            wrongValue();
        }
        return true;
    }

    At at_ = At::Root;
    int skipping_ = 0;
    bool skipNext_ = false;
    Playlist playlist_;
    bool hasAlbum_ = false;
    bool songsBroken_ = false;
    int* playlistKey_ = nullptr;
    Song song_;
    unsigned songKeys_ = 0;
    int songKey_ = -1;
};

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

std::vector<Playlist> loadLibraryCache(LibraryState& st) {
    CacheReader reader;
    JsonRead read = readJsonEvents(st.libraryCachePath, reader);
    if (read == JsonRead::Missing)
        return {};
    // Text that is not JSON has been reported; what was whole before the fault is kept.
    std::string why = read == JsonRead::Read ? reader.rootProblem : std::string();
    if (read == JsonRead::Read) {
        std::string rows = describe(reader.damage);
        why += why.empty() || rows.empty() ? rows : ", " + rows;
    }
    if (!why.empty())
        setAsideDamaged(st.libraryCachePath, why);
    return std::move(reader.playlists);
}

namespace {

void appendNumber(std::string& out, int indent, const char* key, int value, bool last = false) {
    appendJsonKey(out, indent, key);
    out += std::to_string(value);
    out += last ? "\n" : ",\n";
}

} // namespace

// The text is made here rather than through a document: a library of 100,000 songs would first
// become a document of several times its size. Keys stand in the sorted order of the documents.
void writeLibraryCache(const LibraryState& st) {
    std::string text;
    std::size_t estimate = 0;
    for (const Playlist& playlist : st.playlists)
        estimate += 200 + playlist.songs.size() * 220;
    text.reserve(estimate);
    for (const Playlist& playlist : st.playlists) {
        text += text.empty() ? "{\n    \"playlists\": [\n" : ",\n";
        text += "        {\n";
        appendJsonKey(text, 12, "albumName");
        appendJsonString(text, playlist.albumName);
        text += ",\n";
        appendNumber(text, 12, "favoriteCount", playlist.favoriteCount);
        appendNumber(text, 12, "iRadioMode", playlist.iRadioMode);
        bool anySong = false;
        for (const Song& song : playlist.songs) {
            // A path that is not UTF-8 cannot stand in JSON without changing its bytes, and a
            // changed path would name another file: the song waits for the next scan.
            if (!isValidUtf8(song.songPath)) {
                logErr("Not saved in the library cache, its path is not UTF-8: %s\n",
                       song.songPath.c_str());
                continue;
            }
            if (!anySong) {
                appendNumber(text, 12, "isFavorite", playlist.isFavorite);
                text += "            \"songs\": [\n";
            } else {
                text += ",\n";
            }
            anySong = true;
            text += "                {\n";
            appendNumber(text, 20, "favoriteCount", song.favoriteCount);
            appendNumber(text, 20, "isFavorite", song.isFavorite);
            appendNumber(text, 20, "musicType", song.musicType);
            appendNumber(text, 20, "playCount", song.playCount);
            appendJsonKey(text, 20, "songPath");
            appendUtf8JsonString(text, song.songPath);
            text += "\n                }";
        }
        if (anySong)
            text += "\n            ]\n";
        else
            appendNumber(text, 12, "isFavorite", playlist.isFavorite, true);
        text += "        }";
    }
    text += text.empty() ? "null" : "\n    ]\n}";
    if (!writeJsonText(st.libraryCachePath, text))
        logErr("Failed to open %s for writing.\n", st.libraryCachePath.c_str());
}
