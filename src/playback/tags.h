#pragma once
#include "playback/engine/handle.h"

#include <cstddef>
#include <string>

struct PlaybackState;

// Longest texts kept of a station's tags, in bytes; longer ones are cut without a word.
constexpr std::size_t stationTextMax = 127;
constexpr std::size_t previousStationNameMax = 255;

// Reads the station's name, genre and running title from a stream's tags into the station
// fields. True when an "icy-name" differs from previousStationName. User-interface thread.
bool readStationTags(PlaybackState& st, ChannelHandle handle);

// The read over the engine's three tag texts, each null when the stream has none: the ICY and
// HTTP header lists (strings one after another, each ended by a zero byte, an empty one last)
// and the metadata text. Logs one line when the name, genre or title differ from the last logged.
bool applyStationTags(PlaybackState& st, const char* icy, const char* http, const char* meta);

// The 5-second refresh while a station plays: a read, a repaint of the LCD, and the name kept
// for the next comparison.
void refreshStationTags(PlaybackState& st);

// The test of radioStations[index] by the station list: a probe connection into testStream (at
// most the engine's 5 s), its "icy-name" taken as the station's name, the connection freed. What
// goes wrong is a box for the caller to show (title "Error"); empty when the test passed. The
// index must name a station.
std::string testStation(PlaybackState& st, int index);
