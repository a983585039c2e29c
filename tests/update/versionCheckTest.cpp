#include "update/versionCheck.h"

#include "core/playerState.h"
#include "core/startup.h"
#include "media/icyServer.h"
#include "support/output.h"
#include "support/recordingPlatform.h"

#include <ctime>
#include <gtest/gtest.h>

namespace {

// A body past 64 KiB stops the transfer, with its line; what fit is compared all the same.
TEST(VersionCheck, AsksAnewEachTimeAndComparesTheWholeBodyUpTo64KiBAsBytes) {
    const std::string huge(100 * 1024, '2');
    struct Case {
        std::string body;
        bool newer;
        std::string status = "200 OK";
    };
    const Case cases[] = {
        {"1.0", false}, {"0.9", false}, {"", false},
        {"1.1", true},  {"1.10", true}, {"1.0\n", true},
        {"1.", false},  {huge, true},   {"<html>Not Found</html>", true, "404 Not Found"},
    };
    const std::string head = "GET /Downloads/version.txt?nocache=";
    for (const Case& c : cases) {
        SCOPED_TRACE(c.body.substr(0, 20));
        IcyServer server({{"/Downloads/version.txt", webPage(c.body, c.status)}});
        const long long before = std::time(nullptr);
        std::string latest = "kept";
        const std::string errors =
            errorsOf([&] { EXPECT_EQ(checkForNewVersion(server.url(""), latest), c.newer); });
        EXPECT_EQ(latest, c.newer ? c.body.substr(0, 64 * 1024) : "kept");
        EXPECT_EQ(errors.empty(), c.body.size() < 64 * 1024) << errors;
        const std::string request = server.requests().at(0);
        EXPECT_EQ(request.substr(0, head.size()), head);
        EXPECT_GE(std::stoll(request.substr(head.size())), before);
        EXPECT_NE(request.find("\r\nCache-Control: no-cache\r\n"), std::string::npos);
    }
}

// At start-up a newer version opens the Update window; a server that cannot be reached or never
// answers leaves one line and no window.
TEST(VersionCheck, StartupOpensTheUpdateWindowOnlyForANewerVersion) {
    IcyServer newer({{"/Downloads/version.txt", webPage("1.1")}});
    IcyServer quiet({{"/Downloads/version.txt", silentReply()}});
    const std::pair<std::string, std::string> cases[] = {
        {newer.url(""), ""},
        {"http://127.0.0.1:1", "curl_easy_perform() failed: Couldn't connect to server\n"},
        {quiet.url(""), "curl_easy_perform() failed: Timeout was reached\n"},
    };
    for (const auto& [server, line] : cases) {
        SCOPED_TRACE(server);
        RecordingPlatform platform;
        PlayerState st;
        st.versionServer = server;
        EXPECT_EQ(errorsOf([&] { checkVersionAtStart(st, true); }), line);
        EXPECT_EQ(platform.dialogs, line.empty() ? std::vector<int>{24} : std::vector<int>{});
    }
}

} // namespace
