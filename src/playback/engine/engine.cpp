#include "playback/engine/engine.h"

#include "playback/engine/channel.h"
#include "playback/engine/curlReader.h"
#include "playback/engine/decoderRoles.h"
#include "playback/engine/fontTable.h"
#include "playback/engine/mixer.h"
#include "playback/engine/outputs.h"
#include "util/ascii.h"
#include "util/log.h"
#include "util/paths.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <set>
#include <thread>

namespace {

constexpr std::uint32_t fontBit = 0x80000000u;
constexpr std::uint32_t slotBits = 7;
constexpr std::uint32_t slotMask = (1u << slotBits) - 1;
constexpr std::uint32_t generationMask = (fontBit - 1) >> slotBits;
// How long the null output waits for a decoder before it mixes what there is.
constexpr auto pullWaitBound = std::chrono::seconds(10);

struct Slot {
    std::mutex control; // serialises every call on this slot, from any thread
    std::atomic<ChannelHandle> handle{0};
    // Shared with the channel's decode thread, which ends by itself once the slot lets go.
    std::shared_ptr<Channel> channel;
};

// The engine is one per process, like the device it drives. Its slots outlive init and free, so
// that a handle kept by any thread always finds a lock to take and a generation to compare.
struct Engine {
    std::mutex lifecycle; // init, free, channel creation and the font table
    bool initialized = false;
    std::unique_ptr<Output> output;
    std::set<std::string> roles;
    std::array<Slot, maxChannels> slots;
    MixerTable mixer;
    std::uint32_t nextGeneration = 1;
    FontTable fonts;
    DecodeThreads decodeThreads;
    std::uint32_t epoch = 0;  // counts the inits: a font parsed across a free is not handed out
    int setFontsFailures = 0; // a test's order: the next stream font changes fail
    bool networkStarted = false;
    // Stations being probed, outside the lifecycle lock: a shutdown stops their readers, so that
    // it never waits on a server.
    std::mutex connectingLock;
    std::vector<std::shared_ptr<CurlReader>> connecting;

    ~Engine() { shutDownLocked(); }
    void shutDownLocked();
    std::uint32_t takeGeneration() {
        std::uint32_t g = nextGeneration++ & generationMask;
        return g == 0 ? takeGeneration() : g;
    }
};

Engine& engine() {
    static Engine instance;
    return instance;
}

thread_local EngineError lastError = EngineError::Ok;

template <typename T> T fail(EngineError error, T value) {
    lastError = error;
    return value;
}

template <typename T> T succeed(T value) {
    lastError = EngineError::Ok;
    return value;
}

Slot* slotOf(ChannelHandle handle) {
    if (handle == 0 || (handle & fontBit))
        return nullptr;
    std::uint32_t index = (handle & slotMask) - 1;
    return index < maxChannels ? &engine().slots[index] : nullptr;
}

// Runs work(channel, slot) with the slot's lock held, if handle names a live channel.
template <typename T, typename Work> T withChannel(ChannelHandle handle, T failed, Work work) {
    Slot* slot = slotOf(handle);
    if (!slot)
        return fail(EngineError::Handle, failed);
    std::lock_guard lock(slot->control);
    if (slot->handle.load(std::memory_order_acquire) != handle || !slot->channel)
        return fail(EngineError::Handle, failed);
    return work(*slot->channel, *slot);
}

// Takes the channel out of the mixer's sight and out of its slot, and tells its decode thread to
// end; that thread lets go of the channel last, after whatever open or chunk it is in.
void detachLocked(Slot& slot, int index) {
    {
        OutputLock lock(*engine().output);
        engine().mixer.live[index].store(nullptr, std::memory_order_release);
    }
    slot.handle.store(0, std::memory_order_release);
    slot.channel->stop();
    slot.channel.reset();
}

void Engine::shutDownLocked() {
    if (!initialized)
        return;
    for (int i = 0; i < maxChannels; ++i) {
        std::lock_guard lock(slots[i].control);
        if (slots[i].channel)
            detachLocked(slots[i], i);
    }
    {
        std::lock_guard lock(connectingLock);
        for (const std::shared_ptr<CurlReader>& reader : connecting)
            reader->stop();
    }
    decodeThreads.waitForAll(); // no decoder outlives the engine's fonts and output
    output.reset();
    fonts = {};
    setFontsFailures = 0;
    initialized = false;
}

// Puts a new channel into a free slot and before the mixer; 0 when every slot is taken.
ChannelHandle installChannel(std::shared_ptr<Channel> channel) {
    Engine& e = engine();
    for (int i = 0; i < maxChannels; ++i) {
        Slot& slot = e.slots[i];
        std::lock_guard lock(slot.control);
        if (slot.channel)
            continue;
        ChannelHandle handle = (e.takeGeneration() << slotBits) | static_cast<std::uint32_t>(i + 1);
        slot.channel = std::move(channel);
        {
            OutputLock outputLock(*e.output);
            e.mixer.live[i].store(slot.channel.get(), std::memory_order_release);
        }
        slot.handle.store(handle, std::memory_order_release);
        return succeed(handle);
    }
    channel->stop();
    return fail(EngineError::Memory, ChannelHandle{0});
}

ChannelHandle createChannel(const std::string& path, bool module) {
    Engine& e = engine();
    std::lock_guard lock(e.lifecycle);
    if (!e.initialized)
        return fail(EngineError::Init, ChannelHandle{0});
    std::string role =
        module ? std::string() : roleOfExtension(asciiLower(extensionOf(fileNameOf(path))));
    if (!role.empty() && !e.roles.count(role)) {
        logOut("No %s decoder is loaded for %s\n", role.c_str(), path.c_str());
        return fail(EngineError::FileFormat, ChannelHandle{0});
    }
    // Only what the length and the byte counts need happens here; the decode thread does the
    // rest, so that a song change never makes the window wait.
    EngineError error = EngineError::Ok;
    bool midi = role == "midi";
    ProbedFile probed = module ? probeModuleFile(path, error)
                        : midi ? probeMidiFile(path, error)
                               : probeFfmpegFile(path, error);
    if (!probed.opener)
        return fail(error, ChannelHandle{0});
    std::vector<SoundFontRef> fonts =
        midi ? fontRefs(e.fonts.defaults) : std::vector<SoundFontRef>{};
    auto channel =
        Channel::start(std::move(probed), !module, path, midi, std::move(fonts), e.decodeThreads);
    if (midi) {
        channel->fonts = fontHandles(e.fonts.defaults);
        if (!e.fonts.defaults.empty())
            channel->fontPath = soundFontPath(*e.fonts.defaults.front().font);
    }
    return installChannel(std::move(channel));
}

bool freeChannel(ChannelHandle handle) {
    return withChannel(handle, false, [handle](Channel&, Slot& slot) {
        detachLocked(slot, static_cast<int>((handle & slotMask) - 1));
        return succeed(true);
    });
}

std::uint64_t toBytes(const Channel& ch, std::uint64_t frames) {
    std::uint64_t sourceFrames =
        frames * static_cast<std::uint64_t>(ch.sourceRate) / static_cast<std::uint64_t>(engineRate);
    return sourceFrames * static_cast<std::uint64_t>(ch.sourceChannels) * 2;
}

std::uint64_t toFrames(const Channel& ch, std::uint64_t bytes) {
    std::uint64_t sourceFrames = bytes / (static_cast<std::uint64_t>(ch.sourceChannels) * 2);
    return (sourceFrames * engineRate + static_cast<std::uint64_t>(ch.sourceRate) / 2) /
           static_cast<std::uint64_t>(ch.sourceRate);
}

std::uint64_t msToFrames(int milliseconds) {
    return milliseconds <= 0 ? 0 : static_cast<std::uint64_t>(milliseconds) * engineRate / 1000;
}

constexpr auto urlDeadline = std::chrono::seconds(5);

ProbedFile connectAndProbe(Engine& e, const std::shared_ptr<CurlReader>& reader,
                           Clock::time_point deadline, bool probe, bool aacLoaded,
                           EngineError& error) {
    {
        std::lock_guard lock(e.connectingLock);
        e.connecting.push_back(reader);
    }
    reader->start(e.decodeThreads); // after it can be stopped by a shutdown
    ProbedFile probed;
    if (reader->waitForAnswer(deadline, error))
        probed = probeUrlAudio(reader, deadline, probe, aacLoaded, error);
    std::lock_guard lock(e.connectingLock);
    std::erase(e.connecting, reader);
    return probed;
}

// Header lines as a list of zero-ended strings with an empty one last.
void joinLines(const std::vector<std::string>& lines, std::string& out) {
    out.clear();
    for (const std::string& line : lines) {
        out += line;
        out += '\0';
    }
}

} // namespace

// --- Set-up.

std::uint32_t pluginLoad(const std::string& name) {
    std::string role = roleOfPluginName(name);
    if (role.empty())
        return fail(EngineError::FileOpen, 0u);
    if (!decoderRoleAvailable(role))
        return fail(EngineError::FileFormat, 0u);
    std::lock_guard lock(engine().lifecycle);
    engine().roles.insert(role);
    return succeed(0x40000000u | static_cast<std::uint32_t>(role.size()));
}

void pluginFreeAll() {
    std::lock_guard lock(engine().lifecycle);
    engine().roles.clear();
}

bool engineInit(AudioOutput kind) {
    Engine& e = engine();
    std::lock_guard lock(e.lifecycle);
    if (e.initialized)
        return fail(EngineError::Already, false);
    EngineError error = EngineError::Ok;
    e.output = kind == AudioOutput::Null ? openNullOutput() : openDeviceOutput(e.mixer, error);
    if (!e.output)
        return fail(error, false);
    if (!e.networkStarted)
        e.networkStarted = startNetwork();
    e.decodeThreads.started();
    std::thread([&threads = e.decodeThreads] {
        warmUpModuleLoader();
        threads.finished();
    }).detach();
    e.initialized = true;
    ++e.epoch;
    return succeed(true);
}

bool engineFree() {
    Engine& e = engine();
    std::lock_guard lock(e.lifecycle);
    if (!e.initialized)
        return fail(EngineError::Init, false);
    e.shutDownLocked();
    return succeed(true);
}

EngineError engineErrorCode() {
    return lastError;
}

bool engineIsInitialized() {
    std::lock_guard lock(engine().lifecycle);
    return engine().initialized;
}

// --- Channels.

ChannelHandle streamCreateFile(const std::string& path) {
    return createChannel(path, false);
}

// The network waits happen outside every lock, so that no other call, free or shutdown waits on
// a server; one deadline covers the lookup, the connect, the headers and the probe.
ChannelHandle streamCreateUrl(const std::string& url, bool probe) {
    Engine& e = engine();
    const auto deadline = Clock::now() + urlDeadline;
    bool aacLoaded = false;
    {
        std::lock_guard lock(e.lifecycle);
        if (!e.initialized)
            return fail(EngineError::Init, ChannelHandle{0});
        if (!e.networkStarted)
            return fail(EngineError::NotAvailable, ChannelHandle{0});
        aacLoaded = e.roles.count("aac") > 0;
    }
    EngineError error = EngineError::Ok;
    std::shared_ptr<CurlReader> reader = CurlReader::make(url, deadline, error);
    if (!reader)
        return fail(error, ChannelHandle{0});
    ProbedFile probed = connectAndProbe(e, reader, deadline, probe, aacLoaded, error);
    if (!probed.opener)
        return fail(error, ChannelHandle{0});
    std::lock_guard lock(e.lifecycle);
    if (!e.initialized) {
        reader->stop();
        return fail(EngineError::Init, ChannelHandle{0});
    }
    return installChannel(
        Channel::start(std::move(probed), false, url, false, {}, e.decodeThreads));
}

ChannelHandle musicLoad(const std::string& path) {
    return createChannel(path, true);
}

// Nothing waits for the decoder here: the mixer starts the channel once its first audio is
// decoded, so the start never begins with a gap and the window never waits.
bool channelPlay(ChannelHandle handle) {
    return withChannel(handle, false, [](Channel& ch, Slot&) {
        ch.state.store(static_cast<int>(ChannelState::Playing), std::memory_order_release);
        engine().output->wake();
        return succeed(true);
    });
}

bool channelPause(ChannelHandle handle) {
    return withChannel(handle, false, [](Channel& ch, Slot&) {
        int expected = static_cast<int>(ChannelState::Playing);
        if (!ch.state.compare_exchange_strong(expected, static_cast<int>(ChannelState::Paused)))
            return fail(EngineError::NotPlaying, false);
        return succeed(true);
    });
}

bool channelStop(ChannelHandle handle) {
    return withChannel(handle, false, [](Channel& ch, Slot&) {
        ch.state.store(static_cast<int>(ChannelState::Stopped), std::memory_order_release);
        return succeed(true);
    });
}

ChannelState channelIsActive(ChannelHandle handle) {
    return withChannel(handle, ChannelState::Stopped, [](Channel& ch, Slot&) {
        return succeed(static_cast<ChannelState>(ch.state.load(std::memory_order_acquire)));
    });
}

bool streamFree(ChannelHandle handle) {
    return freeChannel(handle);
}

bool musicFree(ChannelHandle handle) {
    return freeChannel(handle);
}

// --- Volume, positions, tags.

bool channelSetVolume(ChannelHandle handle, float volume) {
    return withChannel(handle, false, [volume](Channel& ch, Slot&) {
        if (!std::isfinite(volume))
            return fail(EngineError::IllegalParam, false);
        std::uint64_t now = ch.played.load(std::memory_order_acquire);
        ch.volume.store(VolumeRamp{volume, volume, now, 0});
        return succeed(true);
    });
}

bool channelGetVolume(ChannelHandle handle, float& volume) {
    return withChannel(handle, false, [&volume](Channel& ch, Slot&) {
        volume = ch.volume.load().at(ch.played.load(std::memory_order_acquire));
        return succeed(true);
    });
}

bool channelSlideVolume(ChannelHandle handle, float target, int milliseconds) {
    return withChannel(handle, false, [=](Channel& ch, Slot&) {
        if (!std::isfinite(target))
            return fail(EngineError::IllegalParam, false);
        std::uint64_t now = ch.played.load(std::memory_order_acquire);
        float from = ch.volume.load().at(now);
        ch.volume.store(VolumeRamp{from, target, now, msToFrames(milliseconds)});
        return succeed(true);
    });
}

bool channelSetGain(ChannelHandle handle, float decibels, int milliseconds) {
    return withChannel(handle, false, [=](Channel& ch, Slot&) {
        // Past about +770 dB the factor overflows a float, and an infinity would reach the mix.
        float factor = decibels == 0.0f ? 1.0f : std::pow(10.0f, decibels / 20.0f);
        if (!std::isfinite(decibels) || !std::isfinite(factor))
            return fail(EngineError::IllegalParam, false);
        std::uint64_t now = ch.played.load(std::memory_order_acquire);
        float from = now == 0 ? factor : ch.gain.load().at(now);
        ch.gain.store(VolumeRamp{from, factor, now, now == 0 ? 0 : msToFrames(milliseconds)});
        return succeed(true);
    });
}

bool channelGetGain(ChannelHandle handle, float& decibels) {
    return withChannel(handle, false, [&decibels](Channel& ch, Slot&) {
        float factor = ch.gain.load().to;
        decibels = factor == 1.0f ? 0.0f : 20.0f * std::log10(factor);
        return succeed(true);
    });
}

std::uint64_t channelGetLength(ChannelHandle handle) {
    return withChannel(handle, noPosition, [](Channel& ch, Slot&) {
        return succeed(ch.reader ? noPosition : toBytes(ch, ch.lengthFrames));
    });
}

std::uint64_t channelGetPosition(ChannelHandle handle) {
    return withChannel(handle, noPosition,
                       [](Channel& ch, Slot&) { return succeed(toBytes(ch, ch.heardPosition())); });
}

double channelBytesToSeconds(ChannelHandle handle, std::uint64_t bytes) {
    return withChannel(handle, -1.0, [bytes](Channel& ch, Slot&) {
        double perSecond = static_cast<double>(ch.sourceRate) * ch.sourceChannels * 2;
        return succeed(static_cast<double>(bytes) / perSecond);
    });
}

std::uint64_t channelSecondsToBytes(ChannelHandle handle, double seconds) {
    return withChannel(handle, noPosition, [seconds](Channel& ch, Slot&) {
        if (seconds < 0)
            return fail(EngineError::IllegalParam, noPosition);
        auto sourceFrames = static_cast<std::uint64_t>(seconds * ch.sourceRate);
        return succeed(sourceFrames * static_cast<std::uint64_t>(ch.sourceChannels) * 2);
    });
}

bool channelSetPosition(ChannelHandle handle, std::uint64_t bytes) {
    return withChannel(handle, false, [bytes](Channel& ch, Slot&) {
        if (ch.reader) // a station plays on from where it is
            return fail(EngineError::NotAvailable, false);
        if (bytes > toBytes(ch, ch.lengthFrames))
            return fail(EngineError::Position, false);
        std::uint64_t frame = std::min(toFrames(ch, bytes), ch.lengthFrames);
        // The buffered audio is not heard from here on; the decode thread seeks.
        OutputLock outputLock(*engine().output);
        ch.requestSeekLocked(frame);
        return succeed(true);
    });
}

// Each thread gets its own copy of each kind, valid until its next call of that kind, so that
// the reader thread may change META meanwhile.
const char* channelGetTags(ChannelHandle handle, TagKind kind) {
    thread_local std::string copies[3];
    using Text = const char*;
    return withChannel(handle, Text{nullptr}, [kind](Channel& ch, Slot&) {
        if (!ch.reader)
            return fail(EngineError::NotAvailable, Text{nullptr});
        const StationAnswer& answer = ch.reader->answer;
        switch (kind) {
        case TagKind::Icy:
        case TagKind::Http: {
            if (answer.icy != (kind == TagKind::Icy))
                return fail(EngineError::NotAvailable, Text{nullptr});
            std::string& copy = copies[kind == TagKind::Icy ? 0 : 1];
            joinLines(answer.lines, copy);
            return succeed(copy.c_str());
        }
        case TagKind::Meta:
            if (!ch.reader->meta(copies[2]))
                return fail(EngineError::NotAvailable, Text{nullptr});
            return succeed(copies[2].c_str());
        }
        return fail(EngineError::IllegalType, Text{nullptr});
    });
}

// --- MIDI.

FontHandle midiFontInit(const std::string& path) {
    Engine& e = engine();
    std::error_code ec;
    std::filesystem::path canonical = std::filesystem::weakly_canonical(path, ec);
    std::string key = ec ? path : canonical.string();
    // A font deleted since its parse is gone for the user too: it fails below as any missing file.
    const bool present = std::filesystem::exists(path, ec);
    std::uint32_t epoch = 0;
    SoundFontRef font;
    {
        std::lock_guard lock(e.lifecycle);
        if (!e.initialized)
            return fail(EngineError::Init, FontHandle{0});
        epoch = e.epoch;
        if (present)
            font = parsedFont(e.fonts, key);
    }
    // A General MIDI font takes a tenth of a second to parse, which no create, free or other
    // font on any thread may wait for.
    if (!font) {
        EngineError error = EngineError::Ok;
        font = loadSoundFont(path, error);
        if (!font)
            return fail(error, FontHandle{0});
    }
    SoundFontRef dropped; // let go after the lock: freeing a font takes a while
    std::lock_guard lock(e.lifecycle);
    if (!e.initialized || e.epoch != epoch)
        return fail(EngineError::Init, FontHandle{0});
    e.fonts.parsed[key] = font;
    dropped = noteFontUsed(e.fonts, font);
    FontHandle handle = fontBit | (e.takeGeneration() << slotBits);
    e.fonts.loaded.push_back(FontEntry{handle, std::move(font)});
    return succeed(handle);
}

bool midiFontFree(FontHandle font) {
    if (font == 0)
        return succeed(true);
    Engine& e = engine();
    std::lock_guard lock(e.lifecycle);
    // Streams that use it and the default list keep their own reference.
    if (!removeFont(e.fonts, font))
        return fail(EngineError::Handle, false);
    return succeed(true);
}

bool midiStreamSetFonts(ChannelHandle stream, const MidiFontRecord* records, int count) {
    Engine& e = engine();
    std::vector<FontEntry> chosen;
    {
        std::lock_guard lock(e.lifecycle);
        if (!e.initialized)
            return fail(EngineError::Init, false);
        if (!chooseFonts(e.fonts, records, count, chosen))
            return fail(EngineError::Handle, false);
        if (stream == 0) {
            e.fonts.defaults = chosen;
            return succeed(true);
        }
        if (e.setFontsFailures > 0) {
            --e.setFontsFailures;
            return fail(EngineError::Unknown, false);
        }
    }
    return withChannel(stream, false, [&chosen](Channel& ch, Slot&) {
        if (!ch.midi)
            return fail(EngineError::IllegalType, false);
        ch.requestFonts(fontRefs(chosen)); // heard from the decoder's next chunk on
        ch.fonts = fontHandles(chosen);
        ch.fontPath = chosen.empty() ? std::string() : soundFontPath(*chosen.front().font);
        return succeed(true);
    });
}

int midiStreamGetFonts(ChannelHandle stream, MidiFontRecord* out, int count) {
    auto report = [out, count](const std::vector<FontHandle>& fonts) {
        for (int i = 0; out && i < count && i < static_cast<int>(fonts.size()); ++i)
            out[i] = MidiFontRecord{fonts[i], -1, 0};
        return succeed(static_cast<int>(fonts.size()));
    };
    if (stream == 0) {
        std::lock_guard lock(engine().lifecycle);
        if (!engine().initialized)
            return fail(EngineError::Init, -1);
        return report(fontHandles(engine().fonts.defaults));
    }
    return withChannel(stream, -1, [&report](Channel& ch, Slot&) {
        if (!ch.midi)
            return fail(EngineError::IllegalType, -1);
        return report(ch.fonts);
    });
}

std::string midiStreamFontPath(ChannelHandle stream) {
    if (stream == 0) {
        Engine& e = engine();
        std::lock_guard lock(e.lifecycle);
        if (!e.initialized)
            return fail(EngineError::Init, std::string());
        if (e.fonts.defaults.empty())
            return succeed(std::string());
        return succeed(soundFontPath(*e.fonts.defaults.front().font));
    }
    return withChannel(stream, std::string(), [](Channel& ch, Slot&) {
        if (!ch.midi)
            return fail(EngineError::IllegalType, std::string());
        return succeed(ch.fontPath);
    });
}

// --- For tests and benchmarks.

namespace {

// Not real time: the next block of every playing channel is waited for, so that a test hears the
// same mix on every run. The wait holds no lock that a decode thread, a control call or a
// fade-out worker needs; the output's lock is taken only for each look, in which the null output
// does the mixer's part of a seek.
void waitForDecoders(Engine& e, std::size_t count) {
    std::vector<std::shared_ptr<Channel>> playing;
    for (Slot& slot : e.slots) {
        std::lock_guard lock(slot.control);
        if (slot.channel && slot.channel->state.load() == static_cast<int>(ChannelState::Playing))
            playing.push_back(slot.channel);
    }
    auto deadline = std::chrono::steady_clock::now() + pullWaitBound;
    for (const std::shared_ptr<Channel>& ch : playing) {
        ch->waitFor(deadline, [&] {
            OutputLock lock(*e.output);
            return ch->stopping() || readyToMix(*ch, count);
        });
    }
}

} // namespace

std::vector<float> nullOutputPull(std::size_t frames) {
    Engine& e = engine();
    if (!e.initialized || !e.output || !e.output->pullable())
        return {};
    std::vector<float> mixed(frames * 2);
    constexpr std::size_t block = 1024;
    for (std::size_t done = 0; done < frames; done += block) {
        std::size_t count = std::min(block, frames - done);
        waitForDecoders(e, count);
        OutputLock lock(*e.output);
        mixBlock(e.mixer, mixed.data() + done * 2, count);
    }
    return mixed;
}

void failStreamSetFonts(int calls) {
    std::lock_guard lock(engine().lifecycle);
    engine().setFontsFailures = calls;
}

int channelUnderruns(ChannelHandle handle) {
    return withChannel(handle, -1, [](Channel& ch, Slot&) {
        return succeed(ch.underruns.load(std::memory_order_relaxed));
    });
}
