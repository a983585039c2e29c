#include "playback/engine/engineFixture.h"
#include "support/smallDisk.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <thread>

namespace fs = std::filesystem;

namespace {

// Polls, for the real device's own clock; a bound that only a broken engine reaches.
template <typename Done> bool waitUntil(Done done) {
    for (int i = 0; i < 2000 && !done(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return done();
}

struct ScopedEnv {
    ScopedEnv(const char* name, const std::string& value) : name(name) {
        if (const char* old = std::getenv(name))
            before = old;
        setenv(name, value.c_str(), 1);
    }
    ~ScopedEnv() { before ? setenv(name, before->c_str(), 1) : unsetenv(name); }
    const char* name;
    std::optional<std::string> before;
};

std::uintmax_t sizeOf(const fs::path& file) {
    std::error_code ec;
    std::uintmax_t size = fs::file_size(file, ec);
    return ec ? 0 : size;
}

// SDL's disk driver plays into a file and reports the device lost when a write fails, as its
// sound-server drivers do when the server goes: here a small disk fills up while the folder of the
// file is gone, so that the default device cannot open again until the folder is back.
TEST(DeviceLoss, TheDefaultDeviceOpensAgainOnceItCanAndTheSongGoesOnFromWhereItWas) {
    TempDir dir;
    SmallDisk disk(dir.mkdir("disk"), "4m");
    if (!disk.error().empty())
        GTEST_SKIP() << disk.error();
    const fs::path folder = dir.mkdir("disk/device"), out = folder / "out.raw";
    // About 0.2 s of the mix fits beside it; all of the disk is some 10 s.
    dir.write("disk/filler", std::string(disk.available() - 64 * 1024, 'x'));
    const std::uintmax_t free = disk.available();
    ScopedEnv driver("SDL_AUDIODRIVER", "disk"), file("SDL_DISKAUDIOFILE", out.string());
    media::SineSpec spec;
    spec.seconds = 60.0;
    const std::string song = media::writeEncodedSine((dir.path() / "song.mp3").string(), spec);
    std::uint64_t before = 0, after = 0;
    ChannelHandle handle = 0;
    std::string log = logOf([&] {
        ASSERT_TRUE(engineInit(AudioOutput::Device));
        handle = streamCreateFile(song);
        ASSERT_TRUE(channelPlay(handle));
        ASSERT_TRUE(waitUntil([&] { return channelGetPosition(handle) > 0 && sizeOf(out) > 0; }));
        fs::remove_all(folder); // the device writes on into the file until the disk is full
        // The lost device is closed, which frees its file.
        ASSERT_TRUE(waitUntil([&] { return disk.available() >= free; }));
        before = channelGetPosition(handle);
        fs::remove(dir.path() / "disk/filler");
        fs::create_directory(folder);
        ASSERT_TRUE(waitUntil([&] { return sizeOf(out) >= 64 * 1024; }));
        after = channelGetPosition(handle);
        EXPECT_EQ(channelIsActive(handle), ChannelState::Playing);
    });
    engineFree();
    std::string bytes = TempDir::read(out);
    std::vector<float> heard(bytes.size() / sizeof(float));
    std::memcpy(heard.data(), bytes.data(), heard.size() * sizeof(float));
    EXPECT_GT(peak(heard), 0.1f) << "the new device plays the song";
    EXPECT_GT(after, before) << "from where it was, not from its start";
    EXPECT_GT(before, 0u);
    const std::string line = "The audio device was lost";
    EXPECT_NE(log.find(line), std::string::npos) << log;
    EXPECT_EQ(log.find(line), log.rfind(line)) << "one line for the loss: " << log;
    EXPECT_EQ(log.find("No audio device could be opened"), std::string::npos) << log;
}

} // namespace
