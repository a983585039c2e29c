#include "gamelink/songInfo.h"

#include "gamelink/commandFile.h"
#include "gamelink/gameLinkState.h"
#include "radio/segments.h"
#include "support/output.h"
#include "support/tempDir.h"

#include <bit>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>

namespace {

// The record as the game packs it, value by value in the machine's own order.
static_assert(std::endian::native == std::endian::little);
struct Packed {
    std::string bytes;
    template <typename T> Packed& operator<<(T value) {
        bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
        return *this;
    }
    Packed& operator<<(const std::string& text) {
        *this << static_cast<std::uint32_t>(text.size());
        bytes += text;
        return *this;
    }
};

TEST(SongInfo, RecordMatchesTheGamesPackingForASongAStationNothingAndNoSong) {
    const auto at = [](int playlist, int song) {
        return [=](GameLinkState& st) { st.playingPlaylist = playlist, st.playingSong = song; };
    };
    const std::uint64_t none = ~std::uint64_t{0};
    struct Case {
        std::function<void(GameLinkState&)> arrange;
        std::string title, folder;
        double position, length;
        std::uint64_t lengthBytes, positionBytes;
        std::int32_t favoriteCount, playlist, song;
    } cases[] = {
        {at(0, 1), "Tone", "Sines", 33.5, 30.0, 5292000, 123456, 4, 0, 1},
        {[](GameLinkState& st) { st.onStation = true; }, "Live", "Loop FM", 33.5, 30.0, 5292000,
         123456, 6, 0, 0},
        {[](GameLinkState& st) { refreshPosition(st); }, "Tone", "Sines", -1.0, -1.0, none, none, 0,
         0, 0},
        {at(9999, 0), "Tone", "Sines", 33.5, 30.0, 5292000, 123456, 0, 9999, 0},
    };
    for (const Case& c : cases) {
        GameLinkState st;
        st.playlists.push_back({"Sines", {Song{"/a.mp3"}, Song{"/b.mp3", 1, 2, 4, 1}}, 2});
        st.radioStations = {RadioStation{"Loop FM", "http://127.0.0.1:9/", 1, 6}};
        st.songTitle = "Tone", st.currentFolderTitle = "Sines";
        st.streamTitle = "Live", st.stationName = "Loop FM";
        st.positionSeconds = 33.5, st.lengthSeconds = 30.0;
        st.lengthBytes = 5292000, st.positionBytes = 123456;
        st.appliedVolume = 0.75f, st.FADE_DURATION_MS = 1000, st.songsBeforeSoundfontChange = 2;
        st.rawFav = 11, st.rawMIDI = 12, st.rawMP3 = 13, st.rawTracker = 14, st.rawRadio = 15;
        st.songPlayDurationMin = 40, st.songPlayDurationMax = 100;
        st.iSongPlayDurationMin = 50, st.iSongPlayDurationMax = 150;
        st.segmentEnd = 70.25, st.segmentStart = 12.5, st.stationMode = 3;
        c.arrange(st);
        snapshotSongInfo(st);

        Packed want;
        want << c.title << c.folder << c.position << c.lengthBytes << c.length << c.positionBytes
             << 0.75f << c.favoriteCount;
        for (std::int32_t value :
             {1000, 11, 12, 13, 14, 15, 2, 40, 100, 50, 150, c.song, c.playlist})
            want << value;
        want << 70.25 << 12.5 << std::int32_t{3};
        EXPECT_EQ(want.bytes.size(), songInfoFixedBytes + c.title.size() + c.folder.size());
        EXPECT_EQ(encodeSongInfo(st.songInfo), want.bytes) << c.title << c.playlist;
    }
}

TEST(SongInfo, AnUnwritableFileIsNamedOnceUntilAWriteSucceedsAndMusicRunningSaysWhatItTries) {
    TempDir dir;
    GameLinkState st;
    st.marbleTunnelPath = dir.str();
    const std::string path = dir.str() + "/songInfo.txt";
    dir.mkdir("songInfo.txt");
    EXPECT_EQ(errorsOf([&] { writeSongInfo(st), writeSongInfo(st), writeSongInfo(st); }),
              "Unable to open file for writing: " + path + "\n");
    std::filesystem::remove(path);
    dir.write("songInfo.txt", std::string(500, 'x')); // a longer record is cut to the new one
    EXPECT_EQ(errorsOf([&] { writeSongInfo(st); }), "");
    EXPECT_EQ(TempDir::read(path), encodeSongInfo(st.songInfo));

    const std::string running = dir.str() + "/MusicRunning.txt";
    EXPECT_EQ(errorsOf([&] { writeMusicRunning(st, "yes"); }),
              "Trying to write to: " + running + "\nFile written successfully.\n");
    EXPECT_EQ(TempDir::read(running), "yes");
    const std::string gone = dir.str() + "/gone/MusicRunning.txt";
    st.marbleTunnelPath = dir.str() + "/gone";
    EXPECT_EQ(errorsOf([&] { writeMusicRunning(st, "no"); }),
              "Trying to write to: " + gone + "\nFailed to open " + gone + " for writing.\n");
}

} // namespace
