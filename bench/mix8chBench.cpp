// mix-8ch: the mixer's share of one core with eight channels playing and sliding.
#include "benchSupport.h"
#include "media/encodedAudio.h"
#include "playback/engine/engine.h"

#include <ctime>
#include <filesystem>

namespace {

double threadCpuSeconds() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
}

// Seconds of mixing per second of audio, for 30 s of eight sliding channels. The decoders run
// on their own threads; this thread's time is the mixer's (and the null output's bookkeeping).
double mixShare(const std::string& file) {
    std::vector<ChannelHandle> channels;
    for (int i = 0; i < 8; ++i) {
        ChannelHandle h = streamCreateFile(file);
        channelSetVolume(h, i % 2 ? 1.0f : 0.0f);
        channelSlideVolume(h, i % 2 ? 0.0f : 1.0f, 30000);
        channelPlay(h);
        channels.push_back(h);
    }
    const double seconds = 30.0;
    double before = threadCpuSeconds();
    nullOutputPull(static_cast<std::size_t>(seconds * 44100));
    double used = threadCpuSeconds() - before;
    for (ChannelHandle h : channels)
        streamFree(h);
    return used / seconds;
}

} // namespace

int main(int argc, char** argv) {
    std::filesystem::path work = argc > 1 ? argv[1] : "mix-8ch";
    std::filesystem::create_directories(work);
    std::string wav = (work / "music.wav").string();
    if (!std::filesystem::exists(wav))
        media::writeMusicWav(wav, 40.0, 44100, 2, 7);
    if (!engineInit(AudioOutput::Null))
        return 2;
    std::vector<double> shares;
    mixShare(wav); // warm-up
    for (int run = 0; run < 5; ++run)
        shares.push_back(mixShare(wav) * 100.0);
    engineFree();
    return bench::printRow("mix-8ch", bench::median(shares), "%core", 2.0) ? 0 : 1;
}
