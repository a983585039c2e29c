#include "fuzz/fuzzTarget.h"
#include "settings/configFile.h"
#include "settings/settingsState.h"

#include <filesystem>

namespace {

// config.json lies in the data folder: the paths it gave, saved from a folder of their own.
std::string savedFrom(const ConfigPaths& paths, const std::string& folder) {
    std::filesystem::create_directories(folder);
    SettingsState st;
    st.dataDirectory = folder;
    st.soundFontDirectoryPath = paths.soundFontDirectoryPath;
    st.marbleTunnelPath = paths.marbleTunnelPath;
    saveConfig(st);
    return folder;
}

ConfigPaths loadedFrom(const std::string& folder) {
    SettingsState st;
    st.dataDirectory = folder;
    return loadConfig(st);
}

} // namespace

FUZZ_TARGET(loadConfig) {
    FuzzFile file("config.json", bytes);
    std::string first = savedFrom(loadedFrom(fuzzFolder()), fuzzSavedPath("first"));
    std::string second = savedFrom(loadedFrom(first), fuzzSavedPath("second"));
    expectSameSaves(first + "/config.json", second + "/config.json");
}
