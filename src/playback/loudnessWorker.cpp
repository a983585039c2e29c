#include "playback/loudnessWorker.h"

#include "playback/engine/engine.h"
#include "playback/engine/loudness.h"
#include "playback/levelling.h"
#include "playback/playbackState.h"
#include "util/log.h"
#include "util/paths.h"

#include <algorithm>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace {

// Saved every so many new values, and every twentieth part of a large cache: a crash loses
// little, and a library of 100,000 songs is not written out again after each few.
std::size_t saveInterval(std::size_t entries) {
    return std::max<std::size_t>(100, entries / 20);
}

// The measuring must never take time from the sound or the window: SCHED_IDLE for the CPU and
// the idle class for the disk, else the lowest nice value.
void lowerPriority() {
    sched_param param{};
    bool idle = pthread_setschedparam(pthread_self(), SCHED_IDLE, &param) == 0;
    constexpr int ioprioWhoProcess = 1; // with 0: the calling thread
    constexpr int ioprioIdle = 3 << 13;
    bool ioIdle = syscall(SYS_ioprio_set, ioprioWhoProcess, 0, ioprioIdle) == 0;
    if (!idle && setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), 19) != 0)
        logErr("loudness: cannot lower the measuring thread's priority\n");
    if (!ioIdle)
        logErr("loudness: the measuring thread reads at normal I/O priority\n");
}

bool isMeasured(const LoudnessState& loudness, const LoudnessJob& job) {
    return currentRecord(loudness.values, job) != nullptr;
}

// The next song to measure, or nothing once the thread is to end. Under the lock; a song already
// known is skipped outside it by the caller.
std::optional<LoudnessJob> nextJob(LoudnessState& loudness, std::unique_lock<std::mutex>& lock) {
    for (;;) {
        if (loudness.quit)
            return std::nullopt;
        if (loudness.onAir && std::exchange(loudness.onAirPending, false))
            return loudness.onAir;
        while (loudness.sweepNext < loudness.sweep.size()) {
            LoudnessJob job = loudness.sweep[loudness.sweepNext++];
            if (job.family == musicTypeMidi) {
                if (loudness.sweepFont.empty())
                    continue; // no font to hear it through: measured once it plays
                job.fontPath = loudness.sweepFont;
            }
            return job;
        }
        loudness.wake.wait(lock);
    }
}

LoudnessRecord recordOf(const LoudnessJob& job, const FileStamp& song, const FileStamp& font,
                        const LoudnessFigures& figures) {
    LoudnessRecord record{job.songPath, job.fontPath,           song, font,
                          job.family,   LoudnessResult::Failed, 0.0,  0.0};
    if (figures.outcome == LoudnessOutcome::Measured) {
        record.result = LoudnessResult::Measured;
        record.lufs = figures.lufs;
        record.truePeakDb = figures.truePeakDb;
        logOut("Loudness: %.1f LUFS, true peak %.1f dBTP: %s\n", figures.lufs, figures.truePeakDb,
               job.songPath.c_str());
    } else if (figures.outcome == LoudnessOutcome::Silent) {
        record.result = LoudnessResult::Silent;
        logOut("Loudness: silent, never raised: %s\n", job.songPath.c_str());
    }
    return record;
}

// A value for the song on air moves its gain there, smoothly: the listener hears the level
// settle rather than jump in mid-song. Under the lock.
void moveOnAir(LoudnessState& loudness, const std::string& key) {
    if (!loudness.onAir || loudness.onAirLevelled ||
        loudnessKey(loudness.onAir->songPath, loudness.onAir->fontPath) != key)
        return;
    loudness.onAirLevelled = true;
    LevelGain gain = levelFor(loudness.values, *loudness.onAir);
    if (!loudness.enabled)
        return;
    channelSetGain(loudness.onAirHandle, static_cast<float>(gain.decibels), levellingMoveMs);
    logOut("Levelling: moving to %+.1f dB over %d s%s: %s\n", gain.decibels, levellingMoveMs / 1000,
           gain.heldByPeak ? ", held below the target by its true peak" : "",
           loudness.onAir->songPath.c_str());
}

// True when it added a value.
bool measureOne(LoudnessState& loudness, LoudnessMeter& meter, const LoudnessJob& job) {
    if (isMeasured(loudness, job))
        return false;
    std::optional<FileStamp> song = stampOf(job.songPath);
    std::optional<FileStamp> font = job.fontPath.empty() ? FileStamp{} : stampOf(job.fontPath);
    if (!song || !font)
        return false; // gone: nothing to keep
    LoudnessFigures figures =
        meter.measure(job.songPath, job.family == musicTypeTracker, job.fontPath, loudness.stop);
    if (figures.outcome == LoudnessOutcome::Stopped)
        return false;
    LoudnessRecord record = recordOf(job, *song, *font, figures);
    std::string key = loudnessKey(job.songPath, job.fontPath);
    std::lock_guard lock(loudness.lock);
    loudness.values[key] = std::move(record);
    moveOnAir(loudness, key);
    return true;
}

void run(LoudnessState& loudness, bool idlePriority) {
    if (idlePriority)
        lowerPriority();
    LoudnessTable loaded = loadLoudnessCache(loudness.cachePath);
    {
        std::lock_guard lock(loudness.lock);
        loudness.values = std::move(loaded);
        loudness.cacheLoaded = true;
        if (loudness.onAir)
            moveOnAir(loudness, loudnessKey(loudness.onAir->songPath, loudness.onAir->fontPath));
        loudness.wake.notify_all();
    }
    LoudnessMeter meter;
    std::size_t unsaved = 0; // values since the last save
    for (;;) {
        std::optional<LoudnessJob> job;
        {
            std::unique_lock lock(loudness.lock);
            job = nextJob(loudness, lock);
            loudness.measuring = job.has_value();
        }
        if (!job)
            return;
        unsaved += measureOne(loudness, meter, *job) ? 1 : 0;
        {
            std::lock_guard lock(loudness.lock);
            loudness.measuring = false;
            loudness.wake.notify_all(); // a test waiting for the thread to be idle
        }
        // The thread alone writes the values, so it reads them for the save without the lock.
        if (unsaved >= saveInterval(loudness.values.size())) {
            saveLoudnessCache(loudness.cachePath, loudness.values);
            unsaved = 0;
        }
    }
}

// Abandons the song being measured and joins the thread; false when none runs.
bool joinWorker(LoudnessState& loudness) {
    if (!loudness.worker.joinable())
        return false;
    {
        std::lock_guard lock(loudness.lock);
        loudness.quit = true;
        loudness.stop = true;
        loudness.wake.notify_all();
    }
    loudness.worker.join();
    return true;
}

} // namespace

void startLoudnessWorker(PlaybackState& st) {
    LoudnessState& loudness = st.loudness;
    if (loudness.worker.joinable())
        return;
    loudness.cachePath = joinPath(st.dataDirectory, "/loudnessCache.json");
    loudness.quit = false;
    loudness.stop = false;
    bool idle = loudness.idlePriority;
    loudness.worker = std::thread([&loudness, idle] { run(loudness, idle); });
}

void queueLibraryForLoudness(PlaybackState& st) {
    std::vector<LoudnessJob> sweep;
    for (const Playlist& playlist : st.playlists)
        for (const Song& song : playlist.songs)
            if (song.musicType >= musicTypeMidi && song.musicType <= musicTypeTracker)
                sweep.push_back(LoudnessJob{song.songPath, {}, song.musicType});
    std::string font = midiStreamFontPath(0);
    std::lock_guard lock(st.loudness.lock);
    st.loudness.sweep = std::move(sweep);
    st.loudness.sweepNext = 0;
    if (!font.empty())
        st.loudness.sweepFont = font;
    st.loudness.wake.notify_all();
}

LoudnessState::~LoudnessState() {
    joinWorker(*this);
}

void endLoudnessWorker(PlaybackState& st) {
    LoudnessState& loudness = st.loudness;
    if (!joinWorker(loudness))
        return;
    if (loudness.cacheLoaded)
        saveLoudnessCache(loudness.cachePath, loudness.values);
}

bool waitForLoudness(PlaybackState& st, std::chrono::steady_clock::time_point deadline) {
    LoudnessState& loudness = st.loudness;
    std::unique_lock lock(loudness.lock);
    return loudness.wake.wait_until(lock, deadline, [&loudness] {
        return loudness.cacheLoaded && !loudness.measuring && !loudness.onAirPending &&
               loudness.sweepNext >= loudness.sweep.size();
    });
}
