#include "library/history.h"

#include "library/libraryState.h"
#include "util/jsonRows.h"
#include "util/log.h"

#include <limits>
#include <nlohmann/json.hpp>

namespace {

constexpr std::size_t maxSavedRows = 10000;

// A 32-bit integer of the row, or nothing: a huge number or another type is no index.
std::optional<int> intAt(const nlohmann::json& row, const char* key) {
    auto it = row.find(key);
    if (it == row.end() || !it->is_number_integer())
        return std::nullopt;
    long long value = it->get<long long>();
    if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max())
        return std::nullopt;
    return static_cast<int>(value);
}

bool readRow(const nlohmann::json& element, HistoryEntry& row) {
    auto type = intAt(element, "songType");
    auto song = intAt(element, "songIndex");
    auto plist = intAt(element, "plistIndex");
    if (!type || !song || !plist)
        return false;
    row = HistoryEntry{*type, *song, *plist};
    return true;
}

} // namespace

void loadSongHistory(LibraryState& st, const std::string& path) {
    JsonRead read;
    std::optional<nlohmann::json> root = readJsonFile(path, &read);
    if (read == JsonRead::Missing)
        logErr("Failed to open %s for reading.\n", path.c_str());
    if (!root)
        return;
    st.songHistory.clear();
    if (root->is_null())
        return; // a history without rows
    auto songs = root->is_object() ? root->find("songs") : root->end();
    if (!root->is_object() || songs == root->end() || !songs->is_array()) {
        setAsideDamaged(path, "it holds no list of songs");
        return;
    }
    st.songHistory = readJsonRows<HistoryEntry>(*songs, path, "rows", readRow);
}

void saveSongHistory(const LibraryState& st, const std::string& path) {
    std::size_t first =
        st.songHistory.size() > maxSavedRows ? st.songHistory.size() - maxSavedRows : 0;
    nlohmann::json root; // null until the first row
    for (std::size_t i = first; i < st.songHistory.size(); ++i) {
        const HistoryEntry& row = st.songHistory[i];
        root["songs"].push_back({{"plistIndex", row.plistIndex},
                                 {"songIndex", row.songIndex},
                                 {"songType", row.songType}});
    }
    if (!writeJsonFile(path, root))
        logErr("Failed to open %s for writing.\n", path.c_str());
}

void clearSongHistory(LibraryState& st) {
    st.songHistory.clear();
    st.historyEnd = 0;
    st.historyPosition = 0;
}
