#pragma once
#include <cstdint>

// A channel or font of the audio engine. 0 is never a live handle; a stale one fails every call.
using ChannelHandle = std::uint32_t;
using FontHandle = std::uint32_t;
