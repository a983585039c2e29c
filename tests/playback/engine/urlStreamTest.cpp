#include "core/hostPort.h"
#include "core/playerState.h"
#include "core/windowEvents.h"
#include "media/icyServer.h"
#include "playback/engine/engineFixture.h"
#include "playback/tags.h"

#include <fstream>
#include <thread>

namespace {

const std::string icyHead = "ICY 200 OK\r\nicy-name: Test FM\r\nicy-genre:Rock\r\n"
                            "icy-metaint: 8192\r\ncontent-type: audio/mpeg\r\n\r\n";
const std::string icecastHead = "HTTP/1.0 200 OK\r\nContent-Type: audio/mpeg\r\n"
                                "icy-name:Test FM\r\nicy-genre:Rock\r\nicy-pub:1\r\n\r\n";
const std::string plainHead = "HTTP/1.1 200 OK\r\nContent-Type: audio/mpeg\r\n\r\n";
// A line without a colon, which libcurl refuses as a weird reply: the tags' reader would skip it.
const std::string colonlessHead = "ICY 200 OK\r\nicy-name:Test FM\r\nno colon here\r\n"
                                  "content-type: audio/mpeg\r\n\r\n";
const std::string firstTitle = "StreamTitle='Artist - One';";
const std::string secondTitle = "StreamTitle='Artist - Two';StreamUrl='http://example.org/';";
constexpr std::size_t oneSecond = 24000; // of MP3 at 192 kbit/s, as tools/media makes it

// The lines of a head without their ends, as the tags must give them.
std::vector<std::string> linesOf(std::string head) {
    std::vector<std::string> lines;
    for (std::size_t end; (end = head.find("\r\n")) > 0; head.erase(0, end + 2))
        lines.push_back(head.substr(0, end));
    return lines;
}

// A zero-separated list up to its empty string.
std::vector<std::string> tagLines(const char* tags) {
    std::vector<std::string> lines;
    for (; tags && *tags; tags += lines.back().size() + 1)
        lines.emplace_back(tags);
    return lines;
}

int crossings(const std::vector<float>& stereo) {
    int count = 0;
    for (std::size_t i = 2; i < stereo.size(); i += 2)
        count += (stereo[i - 2] < 0) != (stereo[i] < 0);
    return count;
}

class UrlStreams : public NullEngine {
  protected:
    // A 4 s sine of 440 Hz in the format of the extension, as a station would send it.
    std::string sineBytes(const std::string& extension) {
        media::SineSpec spec{440.0, 4.0, 44100, 2, 0.5};
        // Frames only: a station sends no tag or header frame in the middle of its stream.
        std::vector<std::string> args;
        if (extension == ".mp3")
            args = {"-write_xing", "0", "-id3v2_version", "0"};
        std::ifstream in(media::writeEncodedSine(path("sine" + extension), spec, args),
                         std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    void SetUp() override {
        NullEngine::SetUp();
        audio = sineBytes(".mp3");
    }

    StationReply station(const std::string& head, std::size_t metaInterval = 0) const {
        // The first title outlasts what the reader buffers ahead (256 KiB and a write of
        // libcurl's), so that it is still the newest at creation however fast the loopback is.
        return StationReply{head, audio, metaInterval, {firstTitle, secondTitle}, 48};
    }

    std::string audio;
};

// Creates a stream and captures its log; the handle is 0 on failure.
ChannelHandle create(const std::string& url, std::string& log) {
    ChannelHandle handle = 0;
    log = logOf([&] { handle = streamCreateUrl(url); });
    return handle;
}

TEST_F(UrlStreams, EachStationOpensOrFailsAsItAnswersAndAProbePlaysNothing) {
    StationReply silent;
    silent.silent = true;
    StationReply headOnly = station(plainHead);
    headOnly.audio.clear();
    headOnly.closeAtLimit = false;
    StationReply html = station("HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n");
    html.audio = "<html><body>Not a station</body></html>";
    html.audioLimit = html.audio.size();
    StationReply moved = station("HTTP/1.1 302 Found\r\nLocation: /a\r\nContent-Length: 0\r\n"
                                 "Connection: close\r\n\r\n");
    moved.audio.clear();
    IcyServer server({{"/a", station(icyHead, 8192)},
                      {"/b", station(icecastHead)},
                      {"/c", station(plainHead)},
                      {"/d", silent},
                      {"/e", headOnly},
                      {"/f", station("GARBAGE FOR A STATUS LINE\r\n\r\n")},
                      {"/g", html},
                      {"/h", moved},
                      {"/k", station(colonlessHead)}});
    struct Case {
        std::string url;
        EngineError error; // Ok: it opens, with the lines of this head as its tags
        std::string head;
    };
    const Case cases[] = {
        {server.url("/a"), EngineError::Ok, icyHead},
        {server.url("/b"), EngineError::Ok, icecastHead},
        {server.url("/c"), EngineError::Ok, plainHead},
        {server.url("/h"), EngineError::Ok, icyHead}, // the final answer's headers only
        {server.url("/k"), EngineError::FileOpen, ""},
        {server.url("/d"), EngineError::Timeout, ""},
        {server.url("/e"), EngineError::Timeout, ""},
        {server.url("/f"), EngineError::FileOpen, ""},
        {server.url("/g"), EngineError::FileFormat, ""},
        {server.url("/j"), EngineError::FileOpen, ""}, // 404
        {"", EngineError::FileOpen, ""},
        {"hello", EngineError::FileOpen, ""},
        {"file:///etc/passwd", EngineError::FileOpen, ""},
        {"ftp://127.0.0.1/x", EngineError::FileOpen, ""},
        {"http://127.0.0.1:1/", EngineError::FileOpen, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.url);
        std::string log;
        ChannelHandle handle = create(c.url, log);
        EXPECT_EQ(engineErrorCode(), c.error);
        if (c.error != EngineError::Ok) {
            EXPECT_EQ(handle, 0u);
            EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;
            EXPECT_NE(log.find(c.url), std::string::npos) << log;
            continue;
        }
        ASSERT_NE(handle, 0u) << log;
        bool icy = c.head.starts_with("ICY");
        EXPECT_EQ(tagLines(channelGetTags(handle, icy ? TagKind::Icy : TagKind::Http)),
                  linesOf(c.head));
        EXPECT_EQ(channelGetTags(handle, icy ? TagKind::Http : TagKind::Icy), nullptr);
        EXPECT_EQ(channelGetLength(handle), noPosition);
        EXPECT_EQ(engineErrorCode(), EngineError::Ok);
        EXPECT_FALSE(channelSetPosition(handle, 0));
        EXPECT_TRUE(streamFree(handle));
    }
    EXPECT_NE(server.requests().front().find("\r\nIcy-MetaData: 1\r\n"), std::string::npos);
    ChannelHandle probe = streamCreateUrl(server.url("/a"), true); // tags kept, never played
    EXPECT_EQ(tagLines(channelGetTags(probe, TagKind::Icy)), linesOf(icyHead));
    EXPECT_EQ(std::string(channelGetTags(probe, TagKind::Meta)), firstTitle);
    EXPECT_TRUE(channelPlay(probe));
    EXPECT_EQ(peak(nullOutputPull(engineRate / 4)), 0.0f);

    // The station list's test names a station from its probe, and frees it.
    PlayerState st;
    st.radioStations = {{"", server.url("/a")}, {"", server.url("/c")}, {"", server.url("/j")}};
    const std::string boxes[] = {"", "Failed to get radio info for URL: " + server.url("/c"),
                                 "Failed to load URL: " + server.url("/j")};
    for (int i = 0; i < 3; ++i) {
        logOf([&] { EXPECT_EQ(testStation(st, i), boxes[i]); });
        EXPECT_EQ(channelIsActive(st.testStream), ChannelState::Stopped);
    }
    EXPECT_EQ(st.radioStations[0].name, " Test FM"); // as sent
    EXPECT_EQ(st.radioStations[1].name, "");
}

// The sine is heard; the title of an ICY station changes as it plays, and the window's tick
// reads it.
TEST_F(UrlStreams, StationsOfEachFormatPlayTheirSine) {
    const std::pair<const char*, const char*> formats[] = {
        {".mp3", "audio/mpeg"}, {".aac", "audio/aacp"}, {".ogg", "application/ogg"}};
    for (const auto& [extension, type] : formats) {
        SCOPED_TRACE(extension);
        bool icy = std::string(extension) == ".mp3";
        StationReply reply =
            icy ? station(icyHead, 8192)
                : StationReply{"HTTP/1.0 200 OK\r\nContent-Type: " + std::string(type) + "\r\n\r\n",
                               sineBytes(extension),
                               0,
                               {}};
        IcyServer server({{"/s", reply}});
        std::string log;
        ChannelHandle handle = create(server.url("/s"), log);
        ASSERT_NE(handle, 0u) << log;
        const char* meta = channelGetTags(handle, TagKind::Meta);
        EXPECT_EQ(std::string(meta ? meta : ""), icy ? firstTitle : "");
        ASSERT_TRUE(channelPlay(handle));
        nullOutputPull(engineRate);
        std::vector<float> heard = nullOutputPull(engineRate / 2);
        EXPECT_NEAR(peak(heard), 0.5f, 0.05f);
        EXPECT_NEAR(crossings(heard), 440, 6);
        EXPECT_EQ(channelGetPosition(handle), frameBytes(1.5));
        // The window's station tick reads the new title.
        PlayerState st;
        st.onStation = true;
        st.activeHandle = handle;
        for (int pulls = 0; icy && pulls < 40 && st.streamTitle != "'Artist - Two'"; ++pulls) {
            nullOutputPull(engineRate / 2);
            logOf([&] { onTimer(st, host::timerStationTags); });
        }
        EXPECT_EQ(st.streamTitle, icy ? "'Artist - Two'" : ""); // quotes kept
        EXPECT_EQ(channelIsActive(handle), ChannelState::Playing);
        EXPECT_TRUE(streamFree(handle));
    }
}

// A stream that ends mid-play says why once and stops after the audio it had.
TEST_F(UrlStreams, StationThatEndsStopsOnceItsBufferIsPlayed) {
    StationReply closes = station(plainHead);
    closes.audioLimit = oneSecond;
    StationReply goesSilent = closes;
    goesSilent.closeAtLimit = false;
    IcyServer server({{"/closes", closes}, {"/silent", goesSilent}});
    const std::pair<std::string, std::string> cases[] = {
        {"/closes", "the server closed the connection"}, {"/silent", "nothing came for 5 seconds"}};
    for (const auto& [path, reason] : cases) {
        SCOPED_TRACE(path);
        ChannelHandle handle = 0;
        std::string log = logOf([&] {
            handle = streamCreateUrl(server.url(path));
            channelPlay(handle);
            for (int pulls = 0; pulls < 20 && channelIsActive(handle) == ChannelState::Playing;
                 ++pulls)
                nullOutputPull(engineRate / 2);
        });
        EXPECT_EQ(channelIsActive(handle), ChannelState::Stopped);
        EXPECT_EQ(log, "Internet stream " + server.url(path) + " ends: " + reason + "\n");
        EXPECT_NEAR(channelBytesToSeconds(handle, channelGetPosition(handle)), 1.0, 0.1);
        EXPECT_TRUE(streamFree(handle));
    }
}

// Neither a free of a stream whose server went silent nor a shutdown during a connect waits for
// the server: the test would hang otherwise.
TEST_F(UrlStreams, FreesDoNotWaitForASilentServer) {
    StationReply silentAfter = station(plainHead);
    silentAfter.audioLimit = oneSecond / 2;
    silentAfter.closeAtLimit = false;
    StationReply silent;
    silent.silent = true;
    IcyServer server({{"/quiet", silentAfter}, {"/d", silent}});
    std::string log;
    ChannelHandle playing = create(server.url("/quiet"), log);
    ASSERT_NE(playing, 0u) << log;
    ASSERT_TRUE(channelPlay(playing));
    nullOutputPull(engineRate / 4);
    EXPECT_TRUE(streamFree(playing));

    ChannelHandle connecting = 1;
    std::thread creator([&] { connecting = streamCreateUrl(server.url("/d")); });
    while (server.requests().size() < 2)
        std::this_thread::yield();
    EXPECT_TRUE(engineFree());
    creator.join();
    EXPECT_EQ(connecting, 0u);
}

} // namespace
