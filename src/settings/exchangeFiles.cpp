#include "settings/exchangeFiles.h"

#include "library/favorites.h"
#include "settings/settingsState.h"
#include "util/atomicFile.h"
#include "util/paths.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <string_view>

namespace {

// The game reads a record by counting lines, so a line break inside a path would shift every
// record after it; the path keeps its line, with "?" for the break. Other bytes go out as they
// are: the game opens the file by these bytes, UTF-8 or not.
void appendLine(std::string& out, std::string_view text) {
    std::size_t start = out.size();
    out += text;
    for (std::size_t i = start; i < out.size(); ++i)
        if (out[i] == '\n' || out[i] == '\r')
            out[i] = '?';
    out += '\n';
}

void appendLine(std::string& out, long long number) {
    out += std::to_string(number);
    out += '\n';
}

std::string libraryText(const SettingsState& st) {
    std::string out;
    for (const Playlist& playlist : st.playlists) {
        appendLine(out, playlist.albumName);
        appendLine(out, playlist.iRadioMode);
        appendLine(out, playlist.favoriteCount);
        appendLine(out, playlist.isFavorite);
        appendLine(out, static_cast<long long>(playlist.songs.size()));
        for (const Song& song : playlist.songs) {
            appendLine(out, song.songPath);
            appendLine(out, song.isFavorite);
            appendLine(out, song.playCount);
            appendLine(out, song.favoriteCount);
            appendLine(out, song.musicType);
        }
    }
    return out;
}

// The path stands last, so that its blanks need no quoting.
std::string favoritesText(const SettingsState& st) {
    std::string out;
    for (const FavoriteEntry& row : st.favorites) {
        for (int number : {row.songType, row.songIndex, row.plistIndex, row.favoriteCount}) {
            out += std::to_string(number);
            out += ' ';
        }
        appendLine(out, row.songPath);
    }
    return out;
}

std::string linesText(const std::vector<std::string>& lines) {
    std::string out;
    for (const std::string& line : lines)
        appendLine(out, line);
    return out;
}

// An integer after blanks or tabs, as a stream reads it within one line; at moves past it.
bool readInteger(std::string_view line, std::size_t& at, int& out) {
    while (at < line.size() && (line[at] == ' ' || line[at] == '\t'))
        ++at;
    auto [stop, error] = std::from_chars(line.data() + at, line.data() + line.size(), out);
    if (error != std::errc())
        return false;
    at = static_cast<std::size_t>(stop - line.data());
    return true;
}

// Four integers, one separating character, then the path to the end of the line.
bool readFavoriteLine(std::string_view line, FavoriteEntry& row) {
    std::size_t at = 0;
    for (int* field : {&row.songType, &row.songIndex, &row.plistIndex, &row.favoriteCount})
        if (!readInteger(line, at, *field))
            return false;
    std::string_view path = line.substr(std::min(at + 1, line.size()));
    // A game on Windows ends its lines with CR LF.
    if (!path.empty() && path.back() == '\r')
        path.remove_suffix(1);
    row.songPath = path;
    return true;
}

} // namespace

void exportForGame(SettingsState& st) {
    if (st.marbleTunnelPath.empty())
        return;
    const std::string& folder = st.marbleTunnelPath;
    // Each file is whole or as it was: the game may read it at any moment. One that cannot be
    // written leaves the player as it is, and the next is tried.
    writeFileAtomically(joinPath(folder, "/MusicLibraryCache.txt"), libraryText(st));
    rebuildFavorites(st);
    writeFileAtomically(joinPath(folder, "/SongFavs.txt"), favoritesText(st));
    writeFileAtomically(joinPath(folder, "/MusicPaths.txt"), linesText(st.directoryPaths));
    writeFileAtomically(joinPath(folder, "/SoundFontsPath.Txt"),
                        linesText({st.soundFontDirectoryPath}));
}

std::vector<FavoriteEntry> readSongFavs(const std::string& path) {
    std::vector<FavoriteEntry> rows;
    std::ifstream in(path, std::ios::binary);
    std::string line;
    FavoriteEntry row;
    while (std::getline(in, line) && readFavoriteLine(line, row))
        rows.push_back(row);
    return rows;
}
