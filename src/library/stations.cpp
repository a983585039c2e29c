#include "library/stations.h"

#include "library/libraryState.h"
#include "util/jsonRows.h"
#include "util/log.h"

namespace {

using Json = nlohmann::json;

bool readStation(const Json& element, RadioStation& station) {
    auto name = element.find("name");
    auto url = element.find("url");
    if (name == element.end() || !name->is_string() || url == element.end() || !url->is_string())
        return false;
    station.name = name->get<std::string>();
    station.url = url->get<std::string>();
    // Optional: stations of older files have no favourite fields.
    for (auto [key, field] :
         {std::pair{"favorite", &station.favorite}, {"favoriteCount", &station.favoriteCount}}) {
        auto it = element.find(key);
        if (it != element.end() && !readJsonInt(*it, *field))
            return false;
    }
    return true;
}

} // namespace

bool loadStations(LibraryState& st, const std::string& path) {
    JsonRead read;
    std::optional<Json> root = readJsonFile(path, &read);
    if (read == JsonRead::Missing) {
        logErr("Unable to open file for reading: %s\n", path.c_str());
        return false;
    }
    st.radioStations.clear();
    if (!root || root->is_null())
        return true;
    if (!root->is_array()) {
        setAsideDamaged(path, "it is not a list of stations");
        return true;
    }
    st.radioStations = readJsonRows<RadioStation>(*root, path, "stations", readStation);
    return true;
}

void saveStations(const LibraryState& st, const std::string& path) {
    Json root; // null without stations
    for (const RadioStation& station : st.radioStations)
        root.push_back({{"favorite", station.favorite},
                        {"favoriteCount", station.favoriteCount},
                        {"name", station.name},
                        {"url", station.url}});
    if (!writeJsonFile(path, root))
        logErr("Unable to open file for writing: %s\n", path.c_str());
}
