#include "platform/menus.h"

#include "core/commands.h"

#include <QMainWindow>
#include <QMenuBar>
#include <array>

namespace {

struct MenuEntry {
    const char* menu; // a new menu starts where the title changes
    const char* text;
    int id;
};

// The titles carry no "&": a mnemonic would open a menu by keyboard, which the player never does
// (Alt belongs to the bare window's toggle).
constexpr std::array<MenuEntry, 22> entries{{
    {"File", "Select Local Folders", command::foldersDialog},
    {"File", "Select Internet URL", command::stationsDialog},
    {"File", "Exit", command::exit},
    {"Playback", "Play/Pause", command::playPause},
    {"Playback", "Start", command::start},
    {"Playback", "Stop", command::stop},
    {"Playback", "Next Song", command::nextSong},
    {"Playback", "Previous Song", command::previousSong},
    {"Playback", "Next Sound Font", command::nextSoundFont},
    {"Playback", "Previous Sound Font", command::previousSoundFont},
    {"Playback", "Next Play List", command::nextPlaylist},
    {"Playback", "Previous Play List", command::previousPlaylist},
    {"Settings", "Radio", command::radioDialog},
    {"Settings", "Favorites", command::favoritesDialog},
    {"Settings", "Hotkeys \\ Game Controllers", command::hotkeysDialog},
    {"Settings", "Display", command::visualDialog},
    {"Song Info", "View", command::songInfoDialog},
    {"Marble Tunnel", "Play Marble Tunnel ", command::playGame},
    {"Marble Tunnel", "Merge Favorites", command::mergeFavorites},
    {"Marble Tunnel", "Sync Music Library", command::syncLibrary},
    {"About", "About Marble Tunnel Radio", command::aboutDialog},
    {"Update", "Check For Updates", command::updateDialog},
}};

} // namespace

void createMenus(QMainWindow& window, PlayerState& st) {
    // The window keeps its outer size: the central widget gives up the bar's height.
    const QSize outer = window.size();
    QMenuBar* bar = window.menuBar();
    QMenu* menu = nullptr;
    for (const MenuEntry& entry : entries) {
        if (!menu || menu->title() != entry.menu)
            menu = bar->addMenu(entry.menu);
        QAction* action = menu->addAction(entry.text);
        const int id = entry.id;
        QObject::connect(action, &QAction::triggered, &window, [&st, id] { runCommand(st, id); });
    }
    window.resize(outer);
}
