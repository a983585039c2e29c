#pragma once
#include "fuzz/fuzzTarget.h"
#include "playback/engine/decoder.h"

#include <algorithm>
#include <memory>
#include <vector>

// What a channel's decode thread does with a decoder of a damaged file: plays up to 10 s in the
// blocks it asks for, then seeks to the middle and to the end, playing a block after each. A
// render never gives more frames than asked for.
inline void playDecoder(Decoder& decoder) {
    constexpr std::size_t block = 4096;
    std::vector<float> out(2 * block);
    auto render = [&] {
        std::size_t got = decoder.render(out.data(), block);
        if (got > block)
            fuzzFailure("a render gave more frames than asked for");
        return got;
    };
    for (std::size_t played = 0; played < 10 * engineRate;) {
        std::size_t got = render();
        if (got == 0)
            break;
        played += got;
    }
    std::uint64_t length = decoder.lengthFrames();
    for (std::uint64_t frame : {length / 2, length}) {
        decoder.seek(frame);
        render();
    }
}

// The bytes as the file `name` (a song of the library's kind), opened by `open` and played.
inline void openAndPlay(const char* name, std::string_view bytes,
                        std::unique_ptr<Decoder> (*open)(const std::string&, EngineError&)) {
    FuzzFile file(name, bytes);
    EngineError error = EngineError::Ok;
    if (std::unique_ptr<Decoder> decoder = open(file.path(), error))
        playDecoder(*decoder);
}
