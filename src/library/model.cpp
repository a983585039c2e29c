#include "library/model.h"

#include "library/libraryState.h"
#include "util/ascii.h"

#include <array>
#include <utility>
#include <vector>

namespace {

constexpr std::array<std::pair<std::string_view, MusicType>, 10> extensionTable{{
    {".midi", musicTypeMidi},
    {".mid", musicTypeMidi},
    {".mp3", musicTypeMp3},
    {".m4a", musicTypeMp3},
    {".flac", musicTypeMp3},
    {".mod", musicTypeTracker},
    {".xm", musicTypeTracker},
    {".s3m", musicTypeTracker},
    {".it", musicTypeTracker},
    {".mtm", musicTypeTracker},
}};

} // namespace

MusicType classifyExtension(std::string_view extension) {
    for (const auto& [text, type] : extensionTable)
        if (extension == text)
            return type;
    return musicTypeUnknown;
}

int favoriteSongTypeOf(MusicType type) {
    switch (type) {
    case musicTypeMidi:
        return 1;
    case musicTypeMp3:
        return 3;
    case musicTypeTracker:
        return 4;
    default:
        return 0;
    }
}

void recountLibrary(LibraryState& st) {
    st.stationCount = static_cast<int>(st.radioStations.size());
    st.midiSongCount = 0;
    st.mp3SongCount = 0;
    st.trackerSongCount = 0;
    st.totalSongCount = 0;
    st.favoriteSongCount = 0;
    for (const Playlist& playlist : st.playlists) {
        for (const Song& song : playlist.songs) {
            switch (song.musicType) {
            case musicTypeMidi:
                ++st.midiSongCount;
                ++st.totalSongCount;
                break;
            case musicTypeMp3:
                ++st.mp3SongCount;
                ++st.totalSongCount;
                break;
            case musicTypeTracker:
                ++st.trackerSongCount;
                ++st.totalSongCount;
                break;
            default:
                break;
            }
            if (song.favoriteCount >= 1)
                ++st.favoriteSongCount;
        }
    }
    st.playlistCount = static_cast<int>(st.playlists.size());
    zeroEmptyFamilyRatios(st, true);
}

void zeroEmptyFamilyRatios(LibraryState& st, bool stationsToo) {
    if (st.favoriteSongCount < 1)
        st.rawFav = 0;
    if (st.mp3SongCount < 1)
        st.rawMP3 = 0;
    if (st.midiSongCount < 1)
        st.rawMIDI = 0;
    if (st.trackerSongCount < 1)
        st.rawTracker = 0;
    if (stationsToo && st.stationCount < 1)
        st.rawRadio = 0;
}

void resetFirstStartRatios(LibraryState& st) {
    st.rawMIDI = 50;
    st.rawTracker = 50;
    st.rawRadio = 20;
    st.rawMP3 = 50;
}

std::string titleCaseFolder(std::string_view name) {
    std::string result;
    result.reserve(name.size());
    bool capitalise = true;
    for (char c : name) {
        if (c == '_' || c == '.') {
            result += ' ';
            capitalise = true;
        } else if (capitalise) {
            result += toUpperAscii(c);
            capitalise = false;
        } else {
            result += c;
        }
    }
    return result;
}

std::string titleFromPath(std::string_view path) {
    size_t separator = path.find_last_of("\\/");
    std::string_view name = separator == std::string_view::npos ? path : path.substr(separator + 1);
    size_t dot = name.rfind('.');
    if (dot == std::string_view::npos)
        return {};
    std::string_view stem = name.substr(0, dot);

    // A capital written just below the limit adds a blank too, so a title reaches 254 bytes.
    constexpr size_t limit = 253;
    std::string title;
    bool capitalise = true;
    for (char c : stem) {
        if (title.size() >= limit)
            break;
        if (capitalise) {
            title += toUpperAscii(c);
            capitalise = false;
        } else if (c == '_') {
            title += ' ';
            capitalise = true;
        } else if (isUpperAscii(c)) {
            title += ' ';
            title += c;
        } else {
            title += c;
        }
    }
    return title;
}

void appendHistory(LibraryState& st, int songType, int songIndex, int plistIndex) {
    st.songHistory.push_back({songType, songIndex, plistIndex});
    st.historyPosition = st.historyEnd;
    st.historyEnd += 1;
}

namespace {
template <typename Row> Row* rowAt(std::vector<Row>& rows, int index) {
    return index >= 0 && index < static_cast<int>(rows.size()) ? &rows[index] : nullptr;
}
template <typename Row> const Row* rowAt(const std::vector<Row>& rows, int index) {
    return index >= 0 && index < static_cast<int>(rows.size()) ? &rows[index] : nullptr;
}
} // namespace

const Song* findSong(const LibraryState& st, SongRef ref) {
    const Playlist* playlist = findPlaylist(st, ref.plistIndex);
    return playlist ? rowAt(playlist->songs, ref.songIndex) : nullptr;
}

Song* findSong(LibraryState& st, SongRef ref) {
    Playlist* playlist = findPlaylist(st, ref.plistIndex);
    return playlist ? rowAt(playlist->songs, ref.songIndex) : nullptr;
}

const Playlist* findPlaylist(const LibraryState& st, int index) {
    return rowAt(st.playlists, index);
}

Playlist* findPlaylist(LibraryState& st, int index) {
    return rowAt(st.playlists, index);
}

const RadioStation* findStation(const LibraryState& st, int index) {
    return rowAt(st.radioStations, index);
}

RadioStation* findStation(LibraryState& st, int index) {
    return rowAt(st.radioStations, index);
}
