#include "library/stations.h"

#include "core/playerState.h"

// Stations arrive with internet streams; until then there is no station file to read.
bool loadStations(PlayerState&, const std::string&) {
    return false;
}
