#include "input/hotkeys.h"

#include "input/inputState.h"
#include "util/jsonFile.h"
#include "util/log.h"

#include <nlohmann/json.hpp>

namespace {

using DocJson = nlohmann::json;

// A flag is only ever a boolean in the file.
bool readFlag(const DocJson& row, const char* key, bool& out) {
    auto it = row.find(key);
    if (it == row.end() || !it->is_boolean())
        return false;
    out = it->get<bool>();
    return true;
}

bool readNumber(const DocJson& row, const char* key, int& out) {
    auto it = row.find(key);
    return it != row.end() && readJsonInt(*it, out);
}

// The whole row or nothing: a row that is not what the player writes keeps the binding its id had.
std::optional<HotkeyBinding> readRow(const DocJson& row) {
    if (!row.is_object())
        return std::nullopt;
    HotkeyBinding binding;
    int vkKey = 0;
    // A negative key code would be kept as a huge unsigned one, which the next start refuses.
    if (!readNumber(row, "vkKey", vkKey) || vkKey < 0 || !readFlag(row, "ctrl", binding.ctrl) ||
        !readFlag(row, "alt", binding.alt) || !readFlag(row, "shift", binding.shift) ||
        !readNumber(row, "gameControllerButton", binding.gameControllerButton) ||
        !readNumber(row, "gameControllerTrigger", binding.gameControllerTrigger))
        return std::nullopt;
    binding.vkKey = static_cast<std::uint32_t>(vkKey);
    return binding;
}

} // namespace

bool loadHotkeys(InputState& st, const std::string& path) {
    JsonRead read;
    std::optional<DocJson> root = readJsonFile(path, &read);
    if (read == JsonRead::Missing) {
        logErr("Unable to open file for reading: %s\n", path.c_str());
        return false;
    }
    if (!root || root->is_null())
        return true;
    if (!root->is_array()) {
        setAsideDamaged(path, "it is not a list of key bindings");
        return true;
    }
    // Rows stay at their ids: a damaged row must not shift the later bindings onto other actions.
    int damaged = 0;
    for (std::size_t id = 0; id < root->size(); ++id) {
        std::optional<HotkeyBinding> row = readRow((*root)[id]);
        if (!row) {
            ++damaged;
            continue;
        }
        if (id >= st.hotkeyTable.size())
            st.hotkeyTable.resize(id + 1);
        st.hotkeyTable[id] = *row;
    }
    if (damaged > 0)
        setAsideDamaged(path, std::to_string(damaged) + " of its rows are not key bindings");
    return true;
}

bool saveHotkeys(const InputState& st, const std::string& path) {
    DocJson rows = DocJson::array();
    for (const HotkeyBinding& row : st.hotkeyTable)
        rows.push_back({{"alt", row.alt},
                        {"ctrl", row.ctrl},
                        {"gameControllerButton", row.gameControllerButton},
                        {"gameControllerTrigger", row.gameControllerTrigger},
                        {"shift", row.shift},
                        {"vkKey", row.vkKey}});
    if (!writeJsonFile(path, rows)) {
        logErr("Unable to open file for writing: %s\n", path.c_str());
        return false;
    }
    return true;
}
