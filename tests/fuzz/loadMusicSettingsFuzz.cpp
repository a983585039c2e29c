#include "fuzz/fuzzTarget.h"
#include "settings/musicSettings.h"
#include "settings/settingsState.h"

#include <filesystem>

namespace {

// saveMusicSettings writes into the data folder, so each save gets a folder of its own.
std::string savedFrom(SettingsState& st, const std::string& folder) {
    std::filesystem::create_directories(folder);
    st.dataDirectory = folder;
    saveMusicSettings(st);
    return folder + "/MusicSettings.json";
}

} // namespace

FUZZ_TARGET(loadMusicSettings) {
    FuzzFile file("MusicSettings.json", bytes);
    SettingsState st;
    loadMusicSettings(st, file.path());
    std::string first = savedFrom(st, fuzzSavedPath("first"));
    SettingsState again;
    loadMusicSettings(again, first);
    expectSameSaves(first, savedFrom(again, fuzzSavedPath("second")));
}
