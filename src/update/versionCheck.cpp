#include "update/versionCheck.h"

// The version request arrives with the update dialog; until then there is nothing to ask.
bool runStartupVersionCheck() {
    return false;
}
