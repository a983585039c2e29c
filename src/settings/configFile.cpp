#include "settings/configFile.h"

#include "core/paths.h"
#include "core/playerState.h"
#include "settings/jsonFile.h"

#include <nlohmann/json.hpp>

namespace {

std::string configPath(const PlayerState& st) {
    return joinPath(st.dataDirectory, "/config.json");
}

std::string stringAt(const nlohmann::json& root, const char* key) {
    auto it = root.find(key);
    return it != root.end() && it->is_string() ? it->get<std::string>() : std::string();
}

} // namespace

ConfigPaths loadConfig(const PlayerState& st) {
    std::optional<nlohmann::json> root = readJsonFile(configPath(st));
    if (!root || !root->is_object())
        return {};
    return ConfigPaths{stringAt(*root, "soundFontDirectoryPath"),
                       stringAt(*root, "marbleTunnelPath")};
}

void saveConfig(const PlayerState& st) {
    nlohmann::json root = nlohmann::json::object();
    root["marbleTunnelPath"] = st.marbleTunnelPath;
    root["soundFontDirectoryPath"] = st.soundFontDirectoryPath;
    writeJsonFile(configPath(st), root);
}

// The colours file arrives with the colour schemes; nothing at start-up uses it.
void loadColorsAtStartup(const PlayerState&) {}
