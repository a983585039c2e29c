#include "fuzz/playDecoder.h"

namespace {

void openAndPlay(const char* name, std::string_view bytes) {
    FuzzFile file(name, bytes);
    EngineError error = EngineError::Ok;
    if (std::unique_ptr<Decoder> decoder = openModuleDecoder(file.path(), error))
        playDecoder(*decoder);
}

} // namespace

// libopenmpt tells the formats apart by their bytes; the names are those of the library's songs.
FUZZ_TARGET(openModuleDecoderMod) {
    openAndPlay("song.mod", bytes);
}
FUZZ_TARGET(openModuleDecoderXm) {
    openAndPlay("song.xm", bytes);
}
FUZZ_TARGET(openModuleDecoderS3m) {
    openAndPlay("song.s3m", bytes);
}
FUZZ_TARGET(openModuleDecoderIt) {
    openAndPlay("song.it", bytes);
}
