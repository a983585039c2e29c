#pragma once
#include <optional>
#include <string>
#include <vector>

struct PlayerState;
struct RadioStation;

// The rules of the Internet Folder Information dialog; its window shows the rows they give. A row
// of the dialog's list names the station at the same place in radioStations.

// A station's row: its name, " - ", its URL; a station without a name shows " - URL".
std::string stationRow(const RadioStation& station);
std::vector<std::string> stationRows(const PlayerState& st);

// "Add URL" of the box's text, whole however long, against the rows the list shows: nothing for
// an empty text; a text equal to a whole row in any ASCII case is named in a box and not added
// (so a URL whose row has a name in front is accepted again); otherwise a station without a name
// is appended. Its row is then the text alone.
enum class AddedStation { Nothing, AlreadyAdded, Added };
AddedStation addStationUrl(PlayerState& st, const std::vector<std::string>& rows,
                           const std::string& text);

// "Delete URL" of a row; nothing without one or past the list. The stream that plays goes on;
// currentStation keeps naming the station it named, or none (-1) when that one was deleted.
void deleteStation(PlayerState& st, std::optional<int> row);

// A test of the station at index, its failure named in an "Error" box; nothing past the list.
// Blocks for at most the engine's 5 s.
void testStationAt(PlayerState& st, int index);
// "Test URL": "No URL is selected." in a box without a row (false then, and nothing else runs).
bool testSelectedStation(PlayerState& st, std::optional<int> row);

// Closing, by "Exit" or the window's close: the stations are saved to the data folder.
void closeStationsDialog(const PlayerState& st);
