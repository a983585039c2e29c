#include "core/folderOptions.h"

#include "core/hostPort.h"
#include "core/libraryEdits.h"
#include "core/playerState.h"
#include "playback/audioSetup.h"
#include "settings/configFile.h"
#include "util/ascii.h"
#include "util/log.h"

#include <algorithm>

const char* folderPickerTitle(PickedFolder mode) {
    switch (mode) {
    case PickedFolder::Music:
        return "Browse for Music Folder";
    case PickedFolder::SoundFonts:
        return "Select SoundFont Folder";
    case PickedFolder::Game:
        return "Select Marble Tunnel Folder";
    }
    return "";
}

void takePickedFolder(PlayerState& st, PickedFolder mode, const std::string& path) {
    if (mode == PickedFolder::SoundFonts)
        st.soundFontDirectoryPath = path;
    if (mode == PickedFolder::Game)
        st.marbleTunnelPath = path;
    saveConfig(st);
}

void clearPickedFolder(PlayerState& st, PickedFolder mode) {
    if (mode == PickedFolder::SoundFonts)
        st.soundFontDirectoryPath.clear();
    if (mode == PickedFolder::Game)
        st.marbleTunnelPath.clear();
    saveConfig(st);
}

AddedFolder addMusicFolder(PlayerState& st, const std::string& text) {
    if (text.empty())
        return AddedFolder::Nothing;
    if (containsIgnoringAsciiCase(st.directoryPaths, text)) {
        host::messageBox("This directory is already added.", "Information", host::Icon::Information,
                         true);
        return AddedFolder::AlreadyAdded;
    }
    st.directoryPaths.push_back(text);
    logOut("Music folder added: %s\n", text.c_str());
    return AddedFolder::Added;
}

void deleteMusicFolder(PlayerState& st, const std::optional<std::string>& selected) {
    st.libraryEditInProgress = true;
    stopAllStreams(st);
    if (!selected)
        return;
    const auto row = std::find(st.directoryPaths.begin(), st.directoryPaths.end(), *selected);
    if (row != st.directoryPaths.end())
        deleteLibraryPath(st, static_cast<std::size_t>(row - st.directoryPaths.begin()));
}

void closeFolderDialog(PlayerState& st) {
    st.libraryEditInProgress = false;
}

std::string unreadableRootsLine(const PlayerState& st) {
    std::string line;
    for (const std::string& root : st.unreadableRoots)
        line += (line.empty() ? "Could not read: " : "; ") + root;
    return line;
}
