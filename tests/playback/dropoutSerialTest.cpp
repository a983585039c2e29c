#include "engineFixture.h"

#include <chrono>
#include <thread>

namespace {

// The user-interface thread blocked by a scan or a station connect must not starve the sound.
TEST(DropOuts, NoneWhileTheCallingThreadSleepsThreeSeconds) {
    TempDir dir;
    media::SineSpec spec;
    spec.seconds = 5.0;
    std::string flac = media::writeEncodedSine((dir.path() / "a.flac").string(), spec);
    std::string mod = (dir.path() / "a.mod").string();
    ASSERT_TRUE(media::writeMod(mod));
    ASSERT_TRUE(engineInit(AudioOutput::Device)); // SDL's dummy driver in the test environment
    pluginLoad("BASSFLAC.dll");
    ChannelHandle song = streamCreateFile(flac);
    ChannelHandle tracker = musicLoad(mod);
    ASSERT_TRUE(channelPlay(song));
    ASSERT_TRUE(channelPlay(tracker));
    std::this_thread::sleep_for(std::chrono::seconds(3));
    EXPECT_EQ(channelUnderruns(song), 0);
    EXPECT_EQ(channelUnderruns(tracker), 0);
    EXPECT_GT(channelBytesToSeconds(song, channelGetPosition(song)), 2.0);
    engineFree();
    pluginFreeAll();
}

} // namespace
