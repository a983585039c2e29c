// The audio of an internet stream: FFmpeg reads the reader's audio bytes through a custom
// AVIOContext, and from there the stream is decoded as a file is.
#include "playback/engine/curlReader.h"
#include "playback/engine/decoder.h"
#include "playback/engine/ffmpegSource.h"
#include "util/log.h"

#include <cstring>

namespace {

struct FreeIo {
    void operator()(AVIOContext* io) const {
        av_freep(&io->buffer);
        avio_context_free(&io);
    }
};
using IoPtr = std::unique_ptr<AVIOContext, FreeIo>;

constexpr int ioBufferSize = 16 * 1024;
// A station's first bytes tell its format; reading more would only delay the start.
constexpr std::int64_t probeBytes = 8 * 1024;
constexpr std::int64_t analyzeMicroseconds = 500'000;

// FFmpeg's read callback: the reader waits for bytes, up to the creation's deadline while the
// stream is probed. The channel holds the reader for as long as its decoder lives.
int readAudio(void* opaque, std::uint8_t* out, int size) {
    auto* reader = static_cast<CurlReader*>(opaque);
    std::size_t got = reader->read(out, static_cast<std::size_t>(size), reader->readDeadline);
    return got == 0 ? AVERROR_EOF : static_cast<int>(got);
}

// The demuxer that the Content-Type names; null lets FFmpeg guess.
const AVInputFormat* formatOfType(const std::string& type) {
    std::string base = type.substr(0, type.find(';'));
    if (base == "audio/mpeg" || base == "audio/mp3")
        return av_find_input_format("mp3");
    if (base == "audio/aac" || base == "audio/aacp" || base == "audio/x-aac")
        return av_find_input_format("aac");
    if (base == "application/ogg" || base == "audio/ogg" || base == "audio/vorbis")
        return av_find_input_format("ogg");
    return nullptr;
}

// A probe wants only the station's tags: its channel never plays.
class ProbeOnlyOpener final : public SourceOpener {
  public:
    std::unique_ptr<Decoder> open(const std::vector<SoundFontRef>&, EngineError& error) override {
        error = EngineError::Ok;
        return nullptr;
    }
};

void logFailure(const std::string& url, const std::string& why) {
    logOut("Internet stream %s cannot be played: %s\n", url.c_str(), why.c_str());
}

FormatPtr openStreamFormat(CurlReader& reader, EngineError& error) {
    const std::string& url = reader.url;
    auto* buffer = static_cast<unsigned char*>(av_malloc(ioBufferSize));
    if (!buffer) {
        error = EngineError::Memory;
        logFailure(url, "out of memory");
        return nullptr;
    }
    IoPtr io(avio_alloc_context(buffer, ioBufferSize, 0, &reader, readAudio, nullptr, nullptr));
    AVFormatContext* raw = io ? avformat_alloc_context() : nullptr;
    if (!raw) {
        if (!io)
            av_free(buffer);
        error = EngineError::Memory;
        logFailure(url, "out of memory");
        return nullptr;
    }
    io->seekable = 0;
    raw->pb = io.get();
    raw->flags |= AVFMT_FLAG_CUSTOM_IO;
    raw->probesize = probeBytes;
    raw->max_analyze_duration = analyzeMicroseconds;
    int opened =
        avformat_open_input(&raw, url.c_str(), formatOfType(reader.answer.contentType), nullptr);
    if (opened < 0) { // FFmpeg has freed the context, but not our I/O
        error = EngineError::FileFormat;
        logFailure(url, "no audio that FFmpeg knows");
        return nullptr;
    }
    (void)io.release(); // closed with the context from here on
    FormatPtr format(raw);
    if (avformat_find_stream_info(format.get(), nullptr) < 0) {
        error = EngineError::FileFormat;
        logFailure(url, "its audio cannot be read");
        return nullptr;
    }
    return format;
}

bool playableCodec(const AVFormatContext* format, bool aacLoaded, const std::string& url) {
    for (unsigned i = 0; i < format->nb_streams; ++i) {
        AVCodecID id = format->streams[i]->codecpar->codec_id;
        if (format->streams[i]->codecpar->codec_type != AVMEDIA_TYPE_AUDIO)
            continue;
        if (id == AV_CODEC_ID_MP3 || id == AV_CODEC_ID_VORBIS ||
            (aacLoaded && id == AV_CODEC_ID_AAC))
            return true;
        logFailure(url, id == AV_CODEC_ID_AAC ? "no aac decoder is loaded"
                                              : std::string("its codec ") + avcodec_get_name(id) +
                                                    " is not one of MP3, AAC and Ogg Vorbis");
        return false;
    }
    logFailure(url, "no audio stream");
    return false;
}

} // namespace

ProbedFile probeUrlAudio(std::shared_ptr<CurlReader> reader, Clock::time_point deadline,
                         bool probeOnly, bool aacLoaded, EngineError& error) {
    quietFfmpegLog();
    const std::string url = reader->url;
    if (reader->answer.contentType.starts_with("text/")) {
        error = EngineError::FileFormat;
        logFailure(url, "it sends " + reader->answer.contentType + ", not audio");
        reader->stop();
        return {};
    }
    reader->readDeadline = deadline;
    FormatPtr format = openStreamFormat(*reader, error);
    if (format && !playableCodec(format.get(), aacLoaded, url)) {
        error = EngineError::FileFormat;
        format.reset();
    }
    if (!format) {
        if (Clock::now() >= deadline)
            error = EngineError::Timeout;
        reader->stop();
        return {};
    }
    ProbedFile probed = describeFfmpegSource(std::move(format), url, true, error);
    if (!probed.opener || probeOnly) {
        reader->stop();
        if (probeOnly && probed.opener)
            probed.opener = std::make_unique<ProbeOnlyOpener>();
    }
    reader->readDeadline = Clock::time_point::max();
    if (probed.opener && !probeOnly)
        reader->handOver();
    probed.reader = std::move(reader);
    return probed;
}
