#include "playback/tags.h"

#include "playback/engine/engine.h"
#include "playback/playbackState.h"
#include "util/log.h"

#include <string>
#include <string_view>
#include <unordered_map>

namespace {

using TagMap = std::unordered_map<std::string, std::string>;

// Keys and values exactly as sent: no blanks trimmed, the key's case kept. A later pair with the
// same key replaces an earlier one.
void addPair(TagMap& pairs, std::string_view text, char separator) {
    std::size_t at = text.find(separator);
    if (at == std::string_view::npos)
        return;
    pairs.insert_or_assign(std::string(text.substr(0, at)), std::string(text.substr(at + 1)));
}

// An empty ICY list stands for the ICY answer all the same and hides the HTTP list.
void addHeaderPairs(TagMap& pairs, const char* icy, const char* http) {
    const char* list = icy ? icy : http;
    if (!list)
        return;
    for (const char* line = list; *line != '\0'; line += std::string_view(line).size() + 1)
        addPair(pairs, line, ':');
}

// The title ends before the ";" in front of "StreamUrl='"; at the very start nothing is cut.
std::string titleOf(const std::string& value) {
    std::size_t url = value.find("StreamUrl='");
    if (url == std::string::npos || url == 0)
        return value;
    return value.substr(0, url - 1);
}

std::string cut(const std::string& text, std::size_t most) {
    return text.size() > most ? text.substr(0, most) : text;
}

void logIfChanged(PlaybackState& st) {
    if (st.stationName == st.loggedStationName && st.stationGenre == st.loggedStationGenre &&
        st.streamTitle == st.loggedStreamTitle)
        return;
    st.loggedStationName = st.stationName;
    st.loggedStationGenre = st.stationGenre;
    st.loggedStreamTitle = st.streamTitle;
    logOut("Station: %s | Genre: %s | Title: %s\n", st.stationName.c_str(), st.stationGenre.c_str(),
           st.streamTitle.c_str());
}

} // namespace

bool applyStationTags(PlaybackState& st, const char* icy, const char* http, const char* meta) {
    st.stationName.clear();
    st.stationGenre.clear();
    TagMap pairs;
    addHeaderPairs(pairs, icy, http);
    if (meta)
        addPair(pairs, meta, '=');
    bool nameDiffers = false;
    if (auto name = pairs.find("icy-name"); name != pairs.end()) {
        nameDiffers = name->second != st.previousStationName;
        st.stationName = cut(name->second, stationTextMax);
    }
    if (auto genre = pairs.find("icy-genre"); genre != pairs.end())
        st.stationGenre = cut(genre->second, stationTextMax);
    if (auto title = pairs.find("StreamTitle"); title != pairs.end())
        st.streamTitle = cut(titleOf(title->second), stationTextMax);
    logIfChanged(st);
    return nameDiffers;
}

bool readStationTags(PlaybackState& st, ChannelHandle handle) {
    // Each text stays valid until this thread asks for another of its kind, so all three may be
    // held at once.
    const char* icy = channelGetTags(handle, TagKind::Icy);
    const char* http = channelGetTags(handle, TagKind::Http);
    const char* meta = channelGetTags(handle, TagKind::Meta);
    return applyStationTags(st, icy, http, meta);
}

void refreshStationTags(PlaybackState& st) {
    readStationTags(st, st.activeHandle);
    st.lcdDirty = true;
    st.previousStationName = cut(st.stationName, previousStationNameMax);
}

std::string testStation(PlaybackState& st, int index) {
    RadioStation& station = st.radioStations[static_cast<std::size_t>(index)];
    st.testStream = streamCreateUrl(station.url, true);
    if (st.testStream == 0)
        return "Failed to load URL: " + station.url;
    // A name the last refresh already read makes the read false, as the playing station's does;
    // the name that came is taken all the same.
    std::string box;
    if (readStationTags(st, st.testStream) || !st.stationName.empty())
        station.name = st.stationName;
    else
        box = "Failed to get radio info for URL: " + station.url;
    streamFree(st.testStream);
    return box;
}
