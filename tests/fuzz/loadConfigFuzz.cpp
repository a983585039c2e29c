#include "fuzz/fuzzTarget.h"
#include "settings/configFile.h"
#include "settings/settingsState.h"

#include <filesystem>

// config.json is read from and saved to the data folder, with the paths it gave.
FUZZ_TARGET(loadConfig) {
    FuzzFile file("config.json", bytes);
    expectStableSaves(file.path(), [](const std::string& from, const std::string& to) {
        SettingsState st;
        st.dataDirectory = std::filesystem::path(from).parent_path().string();
        ConfigPaths paths = loadConfig(st);
        st.soundFontDirectoryPath = paths.soundFontDirectoryPath;
        st.marbleTunnelPath = paths.marbleTunnelPath;
        st.dataDirectory = std::filesystem::path(to).parent_path().string();
        saveConfig(st);
    });
}
