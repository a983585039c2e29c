#include "fuzz/fuzzTarget.h"
#include "settings/musicSettings.h"
#include "settings/settingsState.h"

#include <filesystem>

FUZZ_TARGET(loadMusicSettings) {
    FuzzFile file("MusicSettings.json", bytes);
    expectStableSaves(file.path(), [](const std::string& from, const std::string& to) {
        SettingsState st;
        loadMusicSettings(st, from);
        st.dataDirectory = std::filesystem::path(to).parent_path().string(); // where it saves
        saveMusicSettings(st);
    });
}
