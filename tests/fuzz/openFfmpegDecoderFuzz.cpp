#include "fuzz/playDecoder.h"

namespace {

// FFmpeg guesses a format from the name as well as from the bytes: the same bytes are fed under
// each of the names the library's songs have.
void openAndPlay(const char* name, std::string_view bytes) {
    FuzzFile file(name, bytes);
    EngineError error = EngineError::Ok;
    if (std::unique_ptr<Decoder> decoder = openFfmpegDecoder(file.path(), error))
        playDecoder(*decoder);
}

} // namespace

FUZZ_TARGET(openFfmpegDecoderMp3) {
    openAndPlay("song.mp3", bytes);
}
FUZZ_TARGET(openFfmpegDecoderM4a) {
    openAndPlay("song.m4a", bytes);
}
FUZZ_TARGET(openFfmpegDecoderFlac) {
    openAndPlay("song.flac", bytes);
}
