#include "update/versionCheck.h"

#include "core/playerState.h"
#include "core/startup.h"
#include "media/icyServer.h"
#include "support/output.h"
#include "support/recordingPlatform.h"

#include <ctime>
#include <gtest/gtest.h>

namespace {

std::string base(const IcyServer& server) {
    return server.url("");
}

TEST(VersionCheck, ComparesTheWholeBodyAsBytesWithThisVersion) {
    struct Case {
        std::string body;
        bool newer;
        std::string status = "200 OK";
    };
    const Case cases[] = {
        {"1.0", false}, {"0.9", false},
        {"", false},    {"1.1", true},
        {"1.10", true}, {"1.0\n", true},
        {"1.", false},  {"<html>Not Found</html>", true, "404 Not Found"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.body);
        IcyServer server({{"/Downloads/version.txt", webPage(c.body, c.status)}});
        std::string latest = "kept";
        EXPECT_EQ(checkForNewVersion(base(server), latest), c.newer);
        EXPECT_EQ(latest, c.newer ? c.body : "kept");
    }
}

TEST(VersionCheck, AsksForTheFileAnewEachTimeWithoutACache) {
    IcyServer server({{"/Downloads/version.txt", webPage("1.0")}});
    const long long before = std::time(nullptr);
    std::string latest;
    checkForNewVersion(base(server), latest);
    const long long after = std::time(nullptr);
    ASSERT_EQ(server.requests().size(), 1u);
    const std::string request = server.requests()[0];
    const std::string head = "GET /Downloads/version.txt?nocache=";
    ASSERT_TRUE(request.starts_with(head)) << request;
    const long long stamp = std::stoll(request.substr(head.size()));
    EXPECT_TRUE(stamp >= before && stamp <= after) << request;
    EXPECT_NE(request.find("\r\nCache-Control: no-cache\r\n"), std::string::npos) << request;
}

// A body past 64 KiB stops the transfer; what fit is compared all the same.
TEST(VersionCheck, ABodyPastItsLimitIsCutAndStillCompared) {
    const std::string huge(100 * 1024, '2');
    IcyServer server({{"/Downloads/version.txt", webPage(huge)}});
    std::string latest;
    const std::string errors =
        errorsOf([&] { EXPECT_TRUE(checkForNewVersion(base(server), latest)); });
    EXPECT_EQ(latest, huge.substr(0, 64 * 1024));
    EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 1) << errors;
}

// At start-up a newer version opens the Update window; a server that cannot be reached or never
// answers leaves one line and no window.
TEST(VersionCheck, StartupOpensTheUpdateWindowOnlyForANewerVersion) {
    StationReply silent;
    silent.silent = true;
    IcyServer newer({{"/Downloads/version.txt", webPage("1.1")}});
    IcyServer quiet({{"/Downloads/version.txt", silent}});
    const std::pair<std::string, std::string> cases[] = {
        {base(newer), ""},
        {"http://127.0.0.1:1", "curl_easy_perform() failed: Couldn't connect to server\n"},
        {base(quiet), "curl_easy_perform() failed: Timeout was reached\n"},
    };
    for (const auto& [server, line] : cases) {
        SCOPED_TRACE(server);
        RecordingPlatform platform;
        PlayerState st;
        st.versionServer = server;
        EXPECT_EQ(errorsOf([&] { onMainWindowCreated(st); }), line);
        EXPECT_EQ(platform.dialogs, line.empty() ? std::vector<int>{24} : std::vector<int>{});
    }
}

} // namespace
