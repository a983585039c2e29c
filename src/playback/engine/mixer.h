#pragma once
#include <array>
#include <atomic>
#include <cstddef>

struct Channel;

constexpr int maxChannels = 64;

// The channels the mixer sees. A slot is set and cleared only while the output is locked, so the
// mixer never meets a channel that is being made or freed.
struct MixerTable {
    std::array<std::atomic<Channel*>, maxChannels> live{};
};

// The audio callback's whole work: out = the sum of every playing channel at its volume. Never
// locks, allocates, logs or decodes. False when no channel was in the Playing state.
bool mixBlock(MixerTable& table, float* out, std::size_t frames);

// With the output locked, so that every channel in the table stays in place.
bool anyPlaying(const MixerTable& table);

// Where the mixer runs (the audio callback, or the null output under its lock): whether the next
// block of a playing channel holds what a deterministic mix needs, its prefill or its end.
bool readyToMix(Channel& ch, std::size_t frames);
