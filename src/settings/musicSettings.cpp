#include "settings/musicSettings.h"

#include "settings/settingsState.h"
#include "util/jsonFile.h"
#include "util/log.h"
#include "util/paths.h"

#include <array>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

namespace {

using Json = nlohmann::json;
using Field = std::variant<int SettingsState::*, float SettingsState::*, bool SettingsState::*,
                           std::string SettingsState::*, std::vector<std::string> SettingsState::*>;

struct Key {
    const char* name;
    Field field;
};

// In the order the reader takes them. The field's type decides the JSON type, so
// randomColorPlayer and borderlessAuto stay integers in the file while the rumble and
// version flags are booleans.
const std::array<Key, 37> keys{{
    {"directoryPaths", &SettingsState::directoryPaths},
    {"volumeLevel", &SettingsState::volume},
    {"songPlayDurationMin", &SettingsState::songPlayDurationMin},
    {"songPlayDurationMax", &SettingsState::songPlayDurationMax},
    {"FADE_DURATION_MS", &SettingsState::FADE_DURATION_MS},
    {"rawFav", &SettingsState::rawFav},
    {"rawMIDI", &SettingsState::rawMIDI},
    {"rawMP3", &SettingsState::rawMP3},
    {"rawTracker", &SettingsState::rawTracker},
    {"songsBeforeSoundfontChange", &SettingsState::songsBeforeSoundfontChange},
    {"textR", &SettingsState::textR},
    {"textG", &SettingsState::textG},
    {"textB", &SettingsState::textB},
    {"bkGrR", &SettingsState::bkGrR},
    {"bkGrG", &SettingsState::bkGrG},
    {"bkGrB", &SettingsState::bkGrB},
    {"songR", &SettingsState::songR},
    {"songG", &SettingsState::songG},
    {"songB", &SettingsState::songB},
    {"windowAlpha", &SettingsState::windowAlpha},
    {"lowVolume", &SettingsState::lowVolume},
    {"highVolume", &SettingsState::highVolume},
    {"useRumble", &SettingsState::useRumble},
    {"textureAlpha", &SettingsState::textureAlpha},
    {"useRumbleToggle", &SettingsState::useRumbleToggle},
    {"rumbleTime", &SettingsState::rumbleTime},
    {"rumbleTimeToggle", &SettingsState::rumbleTimeToggle},
    {"iSongPlayDurationMin", &SettingsState::iSongPlayDurationMin},
    {"iSongPlayDurationMax", &SettingsState::iSongPlayDurationMax},
    {"randomColorPlayer", &SettingsState::randomColorPlayer},
    {"borderlessAuto", &SettingsState::borderlessAuto},
    {"currentBkTextureName", &SettingsState::currentBkTextureName},
    {"currentLCDTextureName", &SettingsState::currentLCDTextureName},
    {"bkTextureAlpha", &SettingsState::bkTextureAlpha},
    {"historyDepth", &SettingsState::historyDepth},
    {"versionCheck", &SettingsState::versionCheck},
    {"rawRadio", &SettingsState::rawRadio},
}};

// Any number, narrowed to a 32-bit float; one past the float range would become infinite.
bool readFloat(const Json& value, float& out) {
    if (!value.is_number())
        return false;
    double number = value.get<double>();
    if (!(std::fabs(number) <= std::numeric_limits<float>::max()))
        return false;
    out = static_cast<float>(number);
    return true;
}

bool readPaths(const Json& value, std::vector<std::string>& out) {
    if (!value.is_array())
        return false;
    std::vector<std::string> paths;
    for (const Json& item : value) {
        if (!item.is_string())
            return false;
        paths.push_back(item.get<std::string>());
    }
    out = std::move(paths);
    return true;
}

// One key into its working field; false leaves the field as it was.
bool readKey(const Json& value, Field field, SettingsState& st) {
    return std::visit(
        [&](auto member) {
            auto& target = st.*member;
            using T = std::remove_reference_t<decltype(target)>;
            if constexpr (std::is_same_v<T, int>) {
                return readJsonInt(value, target);
            } else if constexpr (std::is_same_v<T, float>) {
                return readFloat(value, target);
            } else if constexpr (std::is_same_v<T, std::vector<std::string>>) {
                return readPaths(value, target);
            } else if constexpr (std::is_same_v<T, bool>) {
                if (!value.is_boolean())
                    return false;
                target = value.get<bool>();
                return true;
            } else {
                if (!value.is_string())
                    return false;
                target = value.get<std::string>();
                return true;
            }
        },
        field);
}

} // namespace

bool loadMusicSettings(SettingsState& st, const std::string& path) {
    JsonRead read;
    std::optional<Json> root = readJsonFile(path, &read);
    if (read == JsonRead::Missing) {
        logErr("Failed to open file for reading: %s\n", path.c_str());
        return false;
    }
    // The file is there: it counts as read, so a damaged one in the data folder is not replaced
    // by some other copy in the working directory. readJsonFile has reported it.
    if (!root || root->is_null())
        return true;
    if (!root->is_object()) {
        setAsideDamaged(path, "the settings are not a JSON object");
        return true;
    }
    // A missing key keeps its value quietly (older files lack newer keys); a key of the wrong
    // type does too, but is named, all of them on one line.
    std::string wrongKeys;
    for (const Key& key : keys) {
        auto it = root->find(key.name);
        if (it == root->end())
            continue;
        if (readKey(*it, key.field, st)) {
            if (key.name == std::string_view("directoryPaths"))
                st.storedRootsRead = true;
            continue;
        }
        wrongKeys += wrongKeys.empty() ? "" : ", ";
        wrongKeys += key.name;
    }
    if (!wrongKeys.empty())
        setAsideDamaged(path, "wrong type or range for " + wrongKeys);
    return true;
}

void saveMusicSettings(const SettingsState& st) {
    Json root = Json::object();
    for (const Key& key : keys)
        std::visit([&](auto member) { root[key.name] = st.*member; }, key.field);
    std::string path = joinPath(st.dataDirectory, "/MusicSettings.json");
    if (!writeJsonFile(path, root))
        logErr("Failed to open file for writing: %s\n", path.c_str());
}
