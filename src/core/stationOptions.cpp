#include "core/stationOptions.h"

#include "core/hostPort.h"
#include "core/playerState.h"
#include "library/model.h"
#include "library/stations.h"
#include "playback/tags.h"
#include "util/ascii.h"
#include "util/paths.h"

std::string stationRow(const RadioStation& station) {
    return station.name + " - " + station.url;
}

std::vector<std::string> stationRows(const PlayerState& st) {
    std::vector<std::string> rows;
    for (const RadioStation& station : st.radioStations)
        rows.push_back(stationRow(station));
    return rows;
}

AddedStation addStationUrl(PlayerState& st, const std::vector<std::string>& rows,
                           const std::string& text) {
    if (text.empty())
        return AddedStation::Nothing;
    if (containsIgnoringAsciiCase(rows, text)) {
        host::messageBox("This URL is already added.", "Information", host::Icon::Information,
                         true);
        return AddedStation::AlreadyAdded;
    }
    st.radioStations.push_back(RadioStation{"", text, 0, 0});
    st.stationCount = static_cast<int>(st.radioStations.size());
    return AddedStation::Added;
}

void deleteStation(PlayerState& st, std::optional<int> row) {
    if (!row || !findStation(st, *row))
        return;
    st.radioStations.erase(st.radioStations.begin() + *row);
    st.stationCount = static_cast<int>(st.radioStations.size());
    // A favourite edit, the screen and the mode walk then reach the station that plays, or no
    // station at all: never its neighbour that moved up into its place.
    if (st.currentStation > *row)
        --st.currentStation;
    else if (st.currentStation == *row)
        st.currentStation = -1;
}

void testStationAt(PlayerState& st, int index) {
    if (!findStation(st, index))
        return;
    const std::string box = testStation(st, index);
    if (!box.empty())
        host::messageBox(box, "Error", host::Icon::Error, false);
}

bool testSelectedStation(PlayerState& st, std::optional<int> row) {
    if (!row) {
        host::messageBox("No URL is selected.", "Information", host::Icon::Information, true);
        return false;
    }
    testStationAt(st, *row);
    return true;
}

void closeStationsDialog(const PlayerState& st) {
    saveStations(st, joinPath(st.dataDirectory, "/InternetStations.json"));
}
