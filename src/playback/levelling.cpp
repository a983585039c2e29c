#include "playback/levelling.h"

#include "playback/engine/engine.h"
#include "playback/loudnessState.h"
#include "playback/playbackState.h"
#include "playback/slots.h"
#include "util/jsonFile.h"
#include "util/log.h"
#include "util/paths.h"

#include <algorithm>
#include <mutex>
#include <nlohmann/json.hpp>
#include <vector>

namespace {

// A song without a value of its own: the median gain of the measured songs of its font (MIDI)
// or family.
LevelGain provisionalGain(const LoudnessTable& values, const LoudnessJob& job) {
    std::vector<double> gains;
    for (const auto& [key, record] : values)
        if (record.result == LoudnessResult::Measured && record.family == job.family &&
            record.fontPath == job.fontPath)
            gains.push_back(gainOfRecord(record).decibels);
    if (gains.empty())
        return LevelGain{};
    auto middle = gains.begin() + static_cast<std::ptrdiff_t>(gains.size() / 2);
    std::nth_element(gains.begin(), middle, gains.end());
    // Without its own true peak, raising a song could make it clip: only ever lowered.
    return LevelGain{std::min(*middle, 0.0), false, false};
}

// What plays now, as the measuring thread names it; no family for a station.
LoudnessJob jobOfAudible(const PlaybackState& st, ChannelHandle handle) {
    if (st.onStation || handle == 0)
        return LoudnessJob{};
    MusicType family = st.currentMusicType;
    std::string font = family == musicTypeMidi ? midiStreamFontPath(handle) : std::string();
    return LoudnessJob{st.songFilePath, std::move(font), family};
}

void logGain(const LevelGain& gain, const LoudnessRecord* record, const std::string& path) {
    if (!gain.measured)
        logOut("Levelling: %+.1f dB until it is measured: %s\n", gain.decibels, path.c_str());
    else if (!record || record->result != LoudnessResult::Measured)
        logOut("Levelling: none, it is silent or cannot be measured: %s\n", path.c_str());
    else if (gain.heldByPeak)
        logOut("Levelling: %+.1f dB, %.1f LU below the target, held there by its true peak of "
               "%.1f dBTP: %s\n",
               gain.decibels, levellingTargetLufs - (record->lufs + gain.decibels),
               record->truePeakDb, path.c_str());
    else
        logOut("Levelling: %+.1f dB (%.1f LUFS, true peak %.1f dBTP): %s\n", gain.decibels,
               record->lufs, record->truePeakDb, path.c_str());
}

// Sets the channel's gain for the song and makes it the one on air; the thread is woken when it
// has something to measure.
void level(PlaybackState& st, ChannelHandle handle, int milliseconds) {
    LoudnessState& loudness = st.loudness;
    LoudnessJob job = jobOfAudible(st, handle);
    std::lock_guard lock(loudness.lock);
    if (job.family == musicTypeUnknown) { // a station: played as it comes
        loudness.onAir.reset();
        loudness.onAirPending = false;
        return;
    }
    const LoudnessRecord* record = currentRecord(loudness.values, job);
    LevelGain gain = record ? gainOfRecord(*record) : provisionalGain(loudness.values, job);
    if (loudness.enabled) {
        channelSetGain(handle, static_cast<float>(gain.decibels), milliseconds);
        logGain(gain, record, job.songPath);
    }
    if (!job.fontPath.empty())
        loudness.sweepFont = job.fontPath;
    loudness.onAirLevelled = gain.measured;
    loudness.onAirPending = !gain.measured;
    loudness.onAirHandle = handle;
    loudness.onAir = std::move(job);
    loudness.wake.notify_all();
}

std::string switchFile(const PlaybackState& st) {
    return joinPath(st.dataDirectory, "/levelling.json");
}

} // namespace

LevelGain gainOfRecord(const LoudnessRecord& record) {
    if (record.result != LoudnessResult::Measured)
        return LevelGain{0.0, true, false};
    double wanted = levellingTargetLufs - record.lufs;
    double allowed = levellingPeakCeilingDb - record.truePeakDb;
    return LevelGain{std::min(wanted, allowed), true, allowed < wanted};
}

const LoudnessRecord* currentRecord(const LoudnessTable& values, const LoudnessJob& job) {
    auto it = values.find(loudnessKey(job.songPath, job.fontPath));
    if (it == values.end() || stampOf(job.songPath) != it->second.song)
        return nullptr;
    if (!job.fontPath.empty() && stampOf(job.fontPath) != it->second.font)
        return nullptr;
    return &it->second;
}

LevelGain levelFor(const LoudnessTable& values, const LoudnessJob& job) {
    const LoudnessRecord* record = currentRecord(values, job);
    return record ? gainOfRecord(*record) : provisionalGain(values, job);
}

void levelIncoming(PlaybackState& st, ChannelHandle handle) {
    level(st, handle, gainRampMs);
}

void relevelAudible(PlaybackState& st) {
    if (st.currentMusicType == musicTypeMidi)
        level(st, audibleHandle(st), levellingMoveMs);
}

void setLevelling(PlaybackState& st, bool on) {
    st.loudness.enabled = on;
    std::string file = switchFile(st);
    if (!writeJsonFile(file, nlohmann::json{{"enabled", on}}))
        logErr("Failed to open %s for writing.\n", file.c_str());
    logOut("Loudness levelling %s.\n", on ? "on" : "off");
    if (on) {
        level(st, audibleHandle(st), levellingMoveMs);
        return;
    }
    for (Slot slot : {Slot::Main, Slot::Next})
        for (ChannelHandle handle : slotChannels(st, slot))
            channelSetGain(handle, 0.0f);
}

void loadLevellingSwitch(PlaybackState& st) {
    std::string file = switchFile(st);
    std::optional<nlohmann::json> document = readJsonFile(file);
    bool on = true;
    if (document) {
        auto it = document->find("enabled");
        if (document->is_object() && it != document->end() && it->is_boolean())
            on = it->get<bool>();
        else
            setAsideDamaged(file, "it holds no \"enabled\": true or false");
    }
    st.loudness.enabled = on;
}
