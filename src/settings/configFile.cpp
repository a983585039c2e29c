#include "settings/configFile.h"

#include "settings/settingsState.h"
#include "util/jsonRows.h"
#include "util/log.h"
#include "util/paths.h"

#include <fstream>
#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::json;

std::string configPath(const SettingsState& st) {
    return joinPath(st.dataDirectory, "/config.json");
}

std::string colorsPath(const SettingsState& st) {
    return joinPath(st.dataDirectory, "/colors.json");
}

// An absent key is an empty path; one of another type is too, and is reported.
std::string stringAt(const Json& root, const char* key, std::string& wrongKeys) {
    auto it = root.find(key);
    if (it == root.end())
        return {};
    if (it->is_string())
        return it->get<std::string>();
    wrongKeys += wrongKeys.empty() ? key : std::string(", ") + key;
    return {};
}

bool readColor(const Json& element, ColorEntry& color) {
    auto name = element.find("name");
    if (name == element.end() || !name->is_string())
        return false;
    for (auto [key, field] : {std::pair{"r", &color.r}, {"g", &color.g}, {"b", &color.b}}) {
        auto it = element.find(key);
        if (it == element.end() || !readJsonInt(*it, *field))
            return false;
    }
    color.name = name->get<std::string>();
    return true;
}

} // namespace

ConfigPaths loadConfig(const SettingsState& st) {
    std::string path = configPath(st);
    std::optional<Json> root = readJsonFile(path);
    if (!root || root->is_null())
        return {};
    if (!root->is_object()) {
        setAsideDamaged(path, "it is not a JSON object");
        return {};
    }
    std::string wrongKeys;
    ConfigPaths paths{stringAt(*root, "soundFontDirectoryPath", wrongKeys),
                      stringAt(*root, "marbleTunnelPath", wrongKeys)};
    if (!wrongKeys.empty())
        setAsideDamaged(path, "wrong type for " + wrongKeys);
    return paths;
}

void saveConfig(const SettingsState& st) {
    Json root = Json::object();
    root["marbleTunnelPath"] = st.marbleTunnelPath;
    root["soundFontDirectoryPath"] = st.soundFontDirectoryPath;
    if (!writeJsonFile(configPath(st), root))
        logErr("Unable to open file for writing: %s\n", configPath(st).c_str());
}

std::vector<ColorEntry> loadColors(const std::string& path) {
    JsonRead read;
    std::optional<Json> root = readJsonFile(path, &read);
    if (read == JsonRead::Missing)
        logErr("Unable to open file for reading: %s\n", path.c_str());
    if (!root || root->is_null())
        return {};
    if (!root->is_array()) {
        setAsideDamaged(path, "it is not a list of colours");
        return {};
    }
    return readJsonRows<ColorEntry>(*root, path, "colours", readColor);
}

void saveColors(const std::vector<ColorEntry>& colors, const std::string& path) {
    Json root;
    for (const ColorEntry& color : colors)
        root.push_back({{"b", color.b}, {"g", color.g}, {"name", color.name}, {"r", color.r}});
    if (!writeJsonFile(path, root))
        logErr("Unable to open file for writing: %s\n", path.c_str());
}

void loadColorsAtStartup(const SettingsState& st) {
    loadColors(colorsPath(st));
}

void saveColorsIfMissing(const SettingsState& st) {
    std::string path = colorsPath(st);
    if (std::ifstream(path, std::ios::binary))
        return;
    saveColors(std::vector<ColorEntry>(namedColors.begin(), namedColors.end()), path);
}
