#include "dialogs/dialogs.h"
#include "platform/qtHost.h"

#include <csignal>

int main(int argc, char** argv) {
    // A station or a pipe that closes its end must fail a write, not kill the player.
    std::signal(SIGPIPE, SIG_IGN);
    installDialogs();
    return runPlayer(argc, argv);
}
