#include "core/aboutTexts.h"

const char* const aboutFirstText =
    "About Marble Tunnel Radio\n"
    "\n"
    "Marble Tunnel Radio is a feature-rich, customizable music player for Linux, developed by "
    "Fernbridge using FluidSynth, libopenmpt and FFmpeg for the music and SDL for game controller "
    "support. The player is designed to keep the music moving at a fast pace, similar to an "
    "arcade game, and is perfect for playing in the background while gaming.\n"
    "\n"
    "The following files are saved by the program:\n"
    "1- colors.json (custom color settings)\n"
    "2- config.json (music directories)\n"
    "3- favorite.json (favorite songs information)\n"
    "4- musicLibraryCache.json (list of all songs)\n"
    "5- MusicSettings.json (music player settings)\n"
    "6- Song History.json (listened song history)\n"
    "7- InternetStations.json (user-added internet radio station URLs)\n"
    "\n"
    "These files are saved in the data folder, which is the folder the program is started in.\n"
    "\n"
    "Please note that a game controller can only be found when your user may read its device, "
    "which most desktops allow to the person at the keyboard.\n"
    "\n"
    "     For more information, please visit:";

const char* const aboutSecondText =
    "\n"
    "\n"
    "If you have any questions or feedback, please don't hesitate to reach out to us through our "
    "website.\n"
    "\n"
    "Thank you for using Marble Tunnel Radio!";

std::array<AboutLink, 4> aboutLinks() {
    const std::string site = std::string("https://") + makerHost;
    return {{
        {8000, makerHost, site + "/"},
        {8001, "Where to Find Music and Internet Stations",
         site + "/killer-tunes-uncovering-their-importance-and-how-to-add-them-to-your-"
                "collection/"},
        {8002, "Help and Support", site + "/marble-tunnel-radio-features/"},
        {8003, "Support Us - Download Marble Tunnel Game", site + "/download-marble-tunnel/"},
    }};
}
