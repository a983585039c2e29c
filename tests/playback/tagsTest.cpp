#include "playback/tags.h"

#include "playback/playbackState.h"
#include "support/output.h"

#include <gtest/gtest.h>
#include <string>

using namespace std::string_literals;

namespace {

// Header lists as the engine hands them out: each line ended by a zero byte, an empty line last
// (a literal's own zero byte ends the list).
const std::string old = "'Old'", n200(200, 'n'), n127(127, 'n'), bytes = "\xe9\xff" + n200;
const std::string fm = "ICY 200 OK\0icy-name: FM\0icy-genre:X \0\0"s;
const std::string longName = "icy-name:" + n200 + "\0icy-genre:"s + bytes + "\0\0"s;
const std::string longTitle = "StreamTitle=" + n200;
const char* const none = nullptr;

TEST(StationTags, ReadTheNameGenreAndTitleAsSentAndTellWhetherTheWholeNameIsNew) {
    const struct {
        const char *icy, *http, *meta;
        std::string before, name, genre, title; // before: previousStationName
        bool result;
    } cases[] = {
        {fm.c_str(), none, none, "", " FM", "X ", old, true},
        {none, fm.c_str(), "StreamTitle='A - B';", "", " FM", "X ", "'A - B';", true},
        {"\0", fm.c_str(), "StreamTitle='A=B';StreamUrl='u';", "", "", "", "'A=B'", false},
        {"icy-name:A\0icy-name:x:y\0icy-name \0Icy-Name:B\0", none, none, "", "x:y", "", old, true},
        {"icy-name:S\0StreamTitle:h\0", none, "StreamTitle=m", "S", "S", "", "m", false},
        {longName.c_str(), none, none, n127, n127, bytes.substr(0, 127), old, true},
        {none, none, "StreamTitle=StreamUrl='u';", "", "", "", "StreamUrl='u';", false},
        {none, none, "StreamTitle 'A'", "", "", "", old, false},
        {none, none, longTitle.c_str(), "", "", "", n127, false},
    };
    for (const auto& c : cases) {
        PlaybackState st;
        st.stationName = st.stationGenre = "Stale";
        st.streamTitle = old;
        st.previousStationName = c.before;
        bool result = false;
        logOf([&] { result = applyStationTags(st, c.icy, c.http, c.meta); });
        EXPECT_EQ(std::tie(st.stationName, st.stationGenre, st.streamTitle, result),
                  std::tie(c.name, c.genre, c.title, c.result))
            << "case " << &c - cases;
    }
}

TEST(StationTags, EachReadThatChangesTheNameGenreOrTitleLogsOneLine) {
    PlaybackState st;
    std::string log;
    for (const char* meta : {"StreamTitle=A", "StreamTitle=A", "", "StreamTitle=B"})
        log += logOf([&] { applyStationTags(st, fm.c_str(), nullptr, *meta ? meta : nullptr); });
    EXPECT_EQ(log, "Station:  FM | Genre: X  | Title: A\nStation:  FM | Genre: X  | Title: B\n");
}

} // namespace
