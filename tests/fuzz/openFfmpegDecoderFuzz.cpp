#include "fuzz/playDecoder.h"

// FFmpeg guesses a format from the name as well as from the bytes: the same bytes are fed under
// each of the names the library's songs have.
FUZZ_TARGET(openFfmpegDecoderMp3) {
    openAndPlay("song.mp3", bytes, openFfmpegDecoder);
}
FUZZ_TARGET(openFfmpegDecoderM4a) {
    openAndPlay("song.m4a", bytes, openFfmpegDecoder);
}
FUZZ_TARGET(openFfmpegDecoderFlac) {
    openAndPlay("song.flac", bytes, openFfmpegDecoder);
}
