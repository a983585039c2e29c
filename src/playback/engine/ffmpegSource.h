#pragma once
// Inside the engine only, for the two FFmpeg sources (files and internet streams): the owners of
// FFmpeg's handles, and the step from a probed format context to a channel's facts and opener.
#include "playback/engine/decoder.h"

extern "C" {
#include <libavformat/avformat.h>
}

#include <memory>

// A context on custom I/O keeps its AVIOContext when closed; the owner frees it here.
struct CloseFormat {
    void operator()(AVFormatContext* c) const {
        AVIOContext* custom = (c->flags & AVFMT_FLAG_CUSTOM_IO) ? c->pb : nullptr;
        avformat_close_input(&c);
        if (custom) {
            av_freep(&custom->buffer);
            avio_context_free(&custom);
        }
    }
};
using FormatPtr = std::unique_ptr<AVFormatContext, CloseFormat>;

// FFmpeg's warnings about damaged frames must never drown our own lines.
void quietFfmpegLog();

// A format context opened and probed (avformat_find_stream_info) by its caller, made into facts
// and an opener. live: a stream without length or end tag, counted as length 0. Null opener and
// error set after one log line naming `name`.
ProbedFile describeFfmpegSource(FormatPtr format, const std::string& name, bool live,
                                EngineError& error);
