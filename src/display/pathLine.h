#pragma once
#include "library/records.h"

#include <string>
#include <string_view>

struct RadioState;

// The path line of the player screen, "MP3 > Rock > Old Hits"; also sets the headline (lcdTitle)
// and currentFolderTitle.
std::string displayPath(RadioState& st, std::string_view songPath, MusicType musicType);
