// station-test-silent: the time "Test URL" of the Internet Folder Information window holds the
// user-interface thread when the station accepts the connection and never answers. The engine's
// 5 s deadline bounds it; target 6 s. Median of 3 with the real engine on its null output and a
// loopback server of the tests.
#include "benchSupport.h"
#include "core/playerState.h"
#include "core/stationOptions.h"
#include "media/icyServer.h"
#include "playback/engine/engine.h"

#include <filesystem>

namespace {

constexpr int runs = 3;

} // namespace

int main(int argc, char** argv) {
    std::string folder = argc > 1 ? argv[1] : "bench/work/station-test-silent";
    std::filesystem::create_directories(folder);
    if (!engineInit(AudioOutput::Null))
        return 2;
    IcyServer server({{"/silent", silentReply()}});
    PlayerState st;
    st.radioStations = {RadioStation{"", server.url("/silent")}};
    std::vector<double> times;
    {
        bench::OutputToFile log(folder + "/player.log");
        for (int run = 0; run < runs; ++run)
            times.push_back(bench::secondsOf([&st] { testSelectedStation(st, 0); }));
    }
    engineFree();
    return bench::printRow("station-test-silent", bench::median(times), "s", 6.0) ? 0 : 1;
}
