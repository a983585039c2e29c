// station-bad-server: the time the user-interface thread spends inside the change of song that
// loads a station whose server misbehaves: (d) it accepts and never answers, (e) it sends its
// headers and then nothing, (f) it answers with garbage for a status line. One deadline covers
// the whole load, so each must cost the window at most 5 s and a little; the figure is the worst
// of the three medians, target 5.5 s. The real transport on the null output, the station chosen
// as the user would (one-station mode), loopback servers of the tests.
#include "benchSupport.h"
#include "core/playerState.h"
#include "core/transport.h"
#include "media/icyServer.h"
#include "playback/engine/engine.h"
#include "playback/fadeWorker.h"
#include "radio/radioState.h"
#include "support/manualClock.h"

#include <cstdio>
#include <filesystem>

namespace {

constexpr int runs = 3;

struct BadServer {
    const char* name;
    StationReply reply;
};

// Seconds inside one transition to the station at `url`.
double timedLoad(const std::string& url) {
    PlayerState st;
    ManualClock clock;
    st.fadeClock = &clock;
    st.radioStations = {RadioStation{"Bad", url}};
    st.stationCount = 1;
    st.stationMode = stationModeStation;
    st.currentStation = 0;
    st.onStation = true;
    double seconds = bench::secondsOf([&st] { startTransition(st); });
    endFadeWorkers(st);
    return seconds;
}

} // namespace

int main(int argc, char** argv) {
    std::string folder = argc > 1 ? argv[1] : "bench/work/station-bad-server";
    std::filesystem::create_directories(folder);
    if (!engineInit(AudioOutput::Null))
        return 2;
    StationReply silent;
    silent.silent = true;
    StationReply headOnly{"HTTP/1.1 200 OK\r\nContent-Type: audio/mpeg\r\n\r\n", "", 0, {}};
    headOnly.audioLimit = 1;
    headOnly.closeAtLimit = false;
    headOnly.audio = std::string(1, '\0');
    StationReply garbage{"\x01\x02 not a status line at all\r\n\r\n", "", 0, {}};
    const BadServer servers[] = {{"silent", silent}, {"head-only", headOnly}, {"garbage", garbage}};
    std::map<std::string, StationReply> replies;
    for (const BadServer& server : servers)
        replies["/" + std::string(server.name)] = server.reply;
    IcyServer station(replies);

    double worst = 0.0;
    for (const BadServer& server : servers) {
        std::vector<double> times;
        {
            bench::OutputToFile log(folder + "/player.log");
            for (int run = 0; run < runs; ++run)
                times.push_back(timedLoad(station.url("/" + std::string(server.name))));
        }
        double median = bench::median(times);
        bench::printInfoRow(std::string("station-bad-server-") + server.name, median, "s");
        worst = std::max(worst, median);
    }
    engineFree();
    return bench::printRow("station-bad-server", worst, "s", 5.5) ? 0 : 1;
}
