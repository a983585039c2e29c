// update-check-silent: the time one version check holds the user-interface thread when the web
// site accepts the connection and never answers, as at start-up or in a paint of the Update
// window. Its 5 s time-out bounds it; target 5.5 s. Median of 3 against a loopback server of the
// tests.
#include "benchSupport.h"
#include "media/icyServer.h"
#include "update/versionCheck.h"

namespace {

constexpr int runs = 3;

} // namespace

int main() {
    IcyServer server({{"/Downloads/version.txt", silentReply()}});
    std::vector<double> times;
    for (int run = 0; run < runs; ++run)
        times.push_back(bench::secondsOf([&server] {
            std::string latest;
            checkForNewVersion(server.url(""), latest);
        }));
    return bench::printRow("update-check-silent", bench::median(times), "s", 5.5) ? 0 : 1;
}
