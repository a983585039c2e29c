// The game's side of the link against a player running in GAME_FOLDER: waits for
// MusicRunning.txt to say "yes", decodes songInfo.txt field by field, drops commands into
// commands.txt and waits for the record to follow each one. Says what failed and exits 1.
#include <bit>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

namespace {

static_assert(std::endian::native == std::endian::little);
struct Record {
    std::string title, folder;
    double position = 0, length = 0, segmentEnd = 0, segmentStart = 0;
    std::uint64_t lengthBytes = 0, positionBytes = 0;
    float volume = 0;
    // favoriteCount, FADE_DURATION_MS, rawFav, rawMIDI, rawMP3, rawTracker, rawRadio,
    // songsBeforeSoundfontChange, the four durations, playingSong, playingPlaylist
    std::int32_t ints[14] = {}, stationMode = 0;
};

std::string game;
std::string slurp(const std::string& name) {
    std::ifstream in(game + "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// False for a file caught half-way through its rewrite.
bool decode(const std::string& bytes, Record& r) {
    std::size_t at = 0;
    const auto take = [&](auto& value) {
        if (at + sizeof value <= bytes.size())
            std::memcpy(&value, bytes.data() + at, sizeof value);
        at += sizeof value;
    };
    const auto text = [&](std::string& out) {
        std::uint32_t size = 0;
        take(size);
        out = at + size <= bytes.size() ? bytes.substr(at, size) : "";
        at += size;
    };
    text(r.title), text(r.folder), take(r.position), take(r.lengthBytes), take(r.length);
    take(r.positionBytes), take(r.volume), take(r.ints), take(r.segmentEnd), take(r.segmentStart);
    take(r.stationMode);
    return at == bytes.size();
}

// Polls for up to 20 s until the record passes.
bool await(const std::function<bool(const Record&)>& test) {
    for (int i = 0; i < 400; ++i, std::this_thread::sleep_for(std::chrono::milliseconds(50)))
        if (Record r; decode(slurp("songInfo.txt"), r) && test(r))
            return true;
    return false;
}

const char* converse() {
    if (!await([](const Record&) { return slurp("MusicRunning.txt") == "yes"; }))
        return "MusicRunning.txt never said yes";
    // What the script stored in MusicSettings.json; the ratios of empty families are zeroed.
    const std::int32_t stored[11] = {1500, 0, 0, 77, 0, 0, 3, 12, 24, 61, 181};
    Record first;
    if (!await([&](const Record& r) {
            first = r;
            return r.title.starts_with("Tone ") && r.folder == "Sines" && r.volume == 0.5f &&
                   std::equal(stored, stored + 11, r.ints + 1) && r.stationMode == 1 &&
                   r.position > 0 && r.length > 29 && r.length < 31 && r.lengthBytes > 0 &&
                   r.segmentEnd > r.segmentStart;
        }))
        return "no record showed the song and the stored settings";
    if (!await([&](const Record& r) { return r.positionBytes > first.positionBytes; }))
        return "the position did not move";
    const std::pair<const char*, std::function<bool(const Record&)>> steps[] = {
        {"NEXT_SONG", [&](const Record& r) { return r.title != first.title; }},
        {"VOL 0.25", [](const Record& r) { return r.volume == 0.25f; }},
        {"PLAY_SONG 0 1", [](const Record& r) { return r.title == "Tone 550" && r.ints[12] == 1; }},
        {"favoritesOnly", [](const Record& r) { return r.stationMode == 2; }},
        {"PLAY_SONG 1.5 2", [](const Record& r) { return r.ints[12] == 1 && r.volume == 0.25f; }},
    };
    for (const auto& [line, follows] : steps) {
        std::ofstream(game + "/commands.txt", std::ios::app) << line << "\n";
        if (!await([&](const Record& r) { return follows(r) && slurp("commands.txt").empty(); }))
            return line;
    }
    return nullptr;
}

} // namespace

int main(int argc, char** argv) {
    game = argc == 2 ? argv[1] : ".";
    const char* failed = converse();
    if (failed)
        std::printf("FAIL: %s\n", failed);
    return failed ? 1 : 0;
}
