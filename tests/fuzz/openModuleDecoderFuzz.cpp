#include "fuzz/playDecoder.h"

// libopenmpt tells the formats apart by their bytes; the names are those of the library's songs.
FUZZ_TARGET(openModuleDecoderMod) {
    openAndPlay("song.mod", bytes, openModuleDecoder);
}
FUZZ_TARGET(openModuleDecoderXm) {
    openAndPlay("song.xm", bytes, openModuleDecoder);
}
FUZZ_TARGET(openModuleDecoderS3m) {
    openAndPlay("song.s3m", bytes, openModuleDecoder);
}
FUZZ_TARGET(openModuleDecoderIt) {
    openAndPlay("song.it", bytes, openModuleDecoder);
}
