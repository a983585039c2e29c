#include "display/pathLine.h"

#include "library/model.h"
#include "radio/radioState.h"

#include <vector>

namespace {

std::string familyWord(const RadioState& st, MusicType type) {
    switch (type) {
    case musicTypeMidi:
        return "MIDI";
    case musicTypeMp3:
        return "MP3";
    case musicTypeTracker:
        return "Tracker";
    case musicTypeStation:
        return st.stationName;
    default:
        return "Unknown Music Type";
    }
}

// The folders and the file name of a path below its root, "\" taken as "/" too.
std::vector<std::string_view> pathPieces(std::string_view rest, std::string& buffer) {
    buffer.assign(rest);
    for (char& c : buffer)
        if (c == '\\')
            c = '/';
    std::vector<std::string_view> pieces;
    std::string_view all = buffer;
    size_t start = 0;
    while (start <= all.size()) {
        size_t slash = all.find('/', start);
        if (slash == std::string_view::npos)
            slash = all.size();
        if (slash > start)
            pieces.push_back(all.substr(start, slash - start));
        start = slash + 1;
    }
    return pieces;
}

void setHeadline(RadioState& st, const std::string& folderTitle) {
    switch (st.stationMode) {
    case stationModePlaylist:
        st.lcdTitle = folderTitle;
        break;
    case stationModeRadio:
        st.lcdTitle = "Marble Tunnel Radio";
        break;
    case stationModeTop40:
        st.lcdTitle = "Marble Tunnel: Top 40: All Hits, All the Time";
        break;
    case stationModeUndiscovered:
        st.lcdTitle = "Marble Tunnel: Undiscovered Tracks";
        break;
    case stationModeStation:
        st.lcdTitle = st.stationName;
        break;
    default:
        break;
    }
    if (st.lcdTitle.size() > 255)
        st.lcdTitle.resize(255);
}

} // namespace

std::string displayPath(RadioState& st, std::string_view songPath, MusicType musicType) {
    if (st.directoryPaths.empty() && !st.onStation) {
        st.lcdTitle = "Marble Tunnel Radio: No Music Directory";
        return "Marble Tunnel Radio: Add your music directories";
    }
    std::string_view rest = songPath;
    for (const std::string& root : st.directoryPaths) {
        if (rest.starts_with(root)) {
            rest.remove_prefix(root.size());
            break;
        }
    }
    std::string buffer;
    std::vector<std::string_view> pieces = pathPieces(rest, buffer);

    std::string line = familyWord(st, musicType);
    if (st.stationMode == stationModeStation || musicType == musicTypeStation)
        line += " > " + st.stationGenre;
    if (!st.onStation && st.totalSongCount < 1)
        return line;
    if (pieces.size() <= 1)
        return line;

    for (size_t i = 0; i + 1 < pieces.size(); ++i) {
        std::string piece(pieces[i]);
        if (musicType != musicTypeStation) {
            piece = titleCaseFolder(piece);
            if (i == 0)
                st.currentFolderTitle = piece;
            line += " > " + piece;
        }
        if (i == 0)
            setHeadline(st, piece);
    }
    return line;
}
