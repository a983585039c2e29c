// MP3, M4A (AAC), FLAC and anything else FFmpeg opens with an audio stream, resampled to the
// engine's interleaved stereo float at 44100 Hz.
#include "playback/engine/decoder.h"
#include "playback/engine/ffmpegSource.h"
#include "util/log.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libswresample/swresample.h>
}

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <numeric>

namespace {

struct FreeCodec {
    void operator()(AVCodecContext* c) const { avcodec_free_context(&c); }
};
struct FreeResampler {
    void operator()(SwrContext* c) const { swr_free(&c); }
};
struct FreeFrame {
    void operator()(AVFrame* f) const { av_frame_free(&f); }
};
struct FreePacket {
    void operator()(AVPacket* p) const { av_packet_free(&p); }
};
using CodecPtr = std::unique_ptr<AVCodecContext, FreeCodec>;
using ResamplerPtr = std::unique_ptr<SwrContext, FreeResampler>;
using FramePtr = std::unique_ptr<AVFrame, FreeFrame>;
using PacketPtr = std::unique_ptr<AVPacket, FreePacket>;

constexpr int outChannels = 2;
constexpr std::int64_t noDrop = -1;
// No recording goes past 768 kHz. A resampler down from a rate far above it builds a filter of
// millions of taps: seconds of work and a gigabyte for a file of a few kilobytes that claims one.
constexpr int highestSourceRate = 768000;
// Output frames made from a frame at a time: a WAV at 1 Hz gives 44,100 of them for each of its
// samples, and a packet of a thousand samples would otherwise need gigabytes at once.
constexpr std::int64_t largestConversion = 1 << 16;

std::string errorText(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return text;
}

std::uint32_t readBe32(const unsigned char* p) {
    return std::uint32_t(p[0]) << 24 | std::uint32_t(p[1]) << 16 | std::uint32_t(p[2]) << 8 | p[3];
}

// The samples FFmpeg's MP3 decoder drops at the end of a file with a LAME tag (also written by
// FFmpeg's own muxer). Its duration still counts them, so without this the length would be up to
// a frame too long. The tag sits in the first frame, after any ID3v2 tag.
std::int64_t mp3TrailingDiscard(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    unsigned char head[200] = {};
    std::streamoff offset = 0;
    if (in.read(reinterpret_cast<char*>(head), 10) && std::memcmp(head, "ID3", 3) == 0) {
        offset = 10 + ((head[6] & 0x7f) << 21 | (head[7] & 0x7f) << 14 | (head[8] & 0x7f) << 7 |
                       (head[9] & 0x7f));
        if (head[5] & 0x10) // a footer follows the tag
            offset += 10;
    }
    in.clear();
    in.seekg(offset);
    if (!in.read(reinterpret_cast<char*>(head), sizeof head))
        return 0;
    if (head[0] != 0xff || (head[1] & 0xe0) != 0xe0 || ((head[1] >> 1) & 3) != 1)
        return 0; // not a layer III frame header
    bool mpeg1 = ((head[1] >> 3) & 3) == 3;
    bool mono = (head[3] >> 6) == 3;
    std::size_t p = 4 + (mpeg1 ? (mono ? 17 : 32) : (mono ? 9 : 17));
    if (std::memcmp(head + p, "Xing", 4) != 0 && std::memcmp(head + p, "Info", 4) != 0)
        return 0;
    std::uint32_t flags = readBe32(head + p + 4);
    if (!(flags & 1))
        return 0; // without a frame count FFmpeg trims nothing at the end
    p += 8 + 4 + (flags & 2 ? 4 : 0) + (flags & 4 ? 100 : 0) + (flags & 8 ? 4 : 0);
    p += 21; // the encoder's name and settings; then 12 bits of delay and 12 of padding
    int padding = (head[p + 1] & 0x0f) << 8 | head[p + 2];
    constexpr int decoderDelay = 529;
    return std::max(0, padding - decoderDelay);
}

struct Length {
    std::uint64_t frames = 0; // 44100 Hz
    bool exact = false;       // from the container, not guessed from the bit rate
};

// The stream time of the first audible sample.
std::int64_t startOf(const AVStream* stream) {
    return stream->start_time != AV_NOPTS_VALUE ? stream->start_time : 0;
}

Length lengthOf(const AVFormatContext* format, const AVStream* stream, const std::string& path) {
    const std::int64_t startTs = startOf(stream);
    const int rate = stream->codecpar->sample_rate;
    std::int64_t samples = 0;
    bool exact = false;
    if (stream->duration != AV_NOPTS_VALUE && stream->duration > 0) {
        samples = av_rescale_q(stream->duration, stream->time_base, AVRational{1, rate});
        exact = format->duration_estimation_method != AVFMT_DURATION_FROM_BITRATE;
        // FFmpeg's MP3 duration counts the encoder delay that the decoder skips (it starts the
        // stream there) and the padding that it trims.
        if (stream->codecpar->codec_id == AV_CODEC_ID_MP3 && startTs > 0) {
            samples -= av_rescale_q(startTs, stream->time_base, AVRational{1, rate});
            samples -= mp3TrailingDiscard(path);
        }
    } else if (format->duration != AV_NOPTS_VALUE && format->duration > 0) {
        samples = av_rescale(format->duration, rate, AV_TIME_BASE);
    }
    samples = std::max<std::int64_t>(samples, 0);
    return {static_cast<std::uint64_t>(av_rescale(samples, engineRate, rate)), exact};
}

// The format of the frames the resampler was made for; a change mid-file makes a new one.
struct ResamplerInput {
    int format = -1;
    int rate = 0;
    int channels = 0;
    std::uint64_t mask = 0;
    bool operator==(const ResamplerInput&) const = default;
};

ResamplerInput inputOf(const AVFrame* frame) {
    const AVChannelLayout& layout = frame->ch_layout;
    return {frame->format, frame->sample_rate, layout.nb_channels,
            layout.order == AV_CHANNEL_ORDER_NATIVE ? layout.u.mask : 0};
}

ResamplerPtr makeResampler(const AVFrame* frame) {
    if (frame->sample_rate > highestSourceRate)
        return nullptr;
    AVChannelLayout inLayout{};
    if (av_channel_layout_copy(&inLayout, &frame->ch_layout) < 0 ||
        inLayout.order == AV_CHANNEL_ORDER_UNSPEC) {
        av_channel_layout_uninit(&inLayout);
        av_channel_layout_default(&inLayout, frame->ch_layout.nb_channels);
    }
    AVChannelLayout outLayout{};
    av_channel_layout_default(&outLayout, outChannels);
    SwrContext* raw = nullptr;
    int made = swr_alloc_set_opts2(&raw, &outLayout, AV_SAMPLE_FMT_FLT, engineRate, &inLayout,
                                   static_cast<AVSampleFormat>(frame->format), frame->sample_rate,
                                   0, nullptr);
    ResamplerPtr resampler(raw);
    if (made >= 0 && inLayout.nb_channels == 1) {
        // Mono plays at full level on both sides, as listeners expect of a mono recording;
        // FFmpeg's own mix would lower it by 3 dB.
        const double both[] = {1.0, 1.0};
        made = swr_set_matrix(resampler.get(), both, 1);
    }
    av_channel_layout_uninit(&inLayout);
    if (made < 0 || swr_init(resampler.get()) < 0)
        return nullptr;
    return resampler;
}

class FfmpegDecoder final : public Decoder {
  public:
    FfmpegDecoder(FormatPtr format, CodecPtr codec, int streamIndex, Length length);

    std::size_t render(float* out, std::size_t frames) override;
    bool seek(std::uint64_t frame) override;
    std::uint64_t lengthFrames() const override { return length_.frames; }
    int sourceRate() const override { return sourceRate_; }
    int sourceChannels() const override { return sourceChannels_; }
    bool sourceIntact() const override;

    // Decodes up to the first output, so that a file with nothing to play fails at open.
    bool prime(EngineError& error);

  private:
    bool decodeNextFrame();
    bool refill();
    bool convert(const AVFrame* frame, int skipSamples, int& used);
    bool flushResampler();
    void keepOutput(int frames);
    std::int64_t sourceStartOf(const AVFrame* frame);
    bool restartAt(std::int64_t timestamp);

    FormatPtr format_;
    CodecPtr codec_;
    FramePtr frame_;
    PacketPtr packet_;
    ResamplerPtr resampler_;
    ResamplerInput resamplerInput_;
    AVStream* stream_;
    int streamIndex_;
    int sourceRate_;
    int sourceChannels_;
    std::int64_t startTs_;                        // stream time of the first audible sample
    std::int64_t firstPacketTs_ = AV_NOPTS_VALUE; // where a seek to the beginning goes
    std::int64_t preroll_; // source samples decoded and dropped before a seek target
    Length length_;
    std::int64_t openedSize_;    // bytes, or negative when the source cannot tell
    std::vector<float> pending_; // converted output not yet handed out, reused
    std::vector<const std::uint8_t*> planes_;
    std::size_t pendingRead_ = 0; // frames of pending_ handed out
    std::size_t pendingFrames_ = 0;
    std::uint64_t position_ = 0;  // output frame that render hands out next
    std::int64_t nextSource_ = 0; // source sample of the next decoded sample
    std::int64_t dropSourceBefore_ = noDrop;
    std::uint64_t dropOutput_ = 0; // output frames still to drop after a seek
    bool heldFrame_ = false;       // frame_ holds a decoded frame not yet converted
    int frameConverted_ = 0;       // samples of the held frame converted before (0: a new frame)
    bool flushSent_ = false;
    bool decoderDone_ = false;
    bool resamplerFlushed_ = false;
};

FfmpegDecoder::FfmpegDecoder(FormatPtr format, CodecPtr codec, int streamIndex, Length length)
    : format_(std::move(format)), codec_(std::move(codec)), frame_(av_frame_alloc()),
      packet_(av_packet_alloc()), stream_(format_->streams[streamIndex]), streamIndex_(streamIndex),
      sourceRate_(stream_->codecpar->sample_rate),
      sourceChannels_(stream_->codecpar->ch_layout.nb_channels), startTs_(startOf(stream_)),
      length_(length) {
    openedSize_ = format_->pb ? avio_size(format_->pb) : -1;
    // Lossy decoders need history before their output after a seek matches a straight run:
    // MP3's bit reservoir reaches back 511 bytes (five of the smallest frames) and every such
    // decoder overlaps frames. A quarter of a second covers both; a tenth was too little.
    const AVCodecDescriptor* descriptor = avcodec_descriptor_get(codec_->codec_id);
    bool lossless = descriptor && (descriptor->props & AV_CODEC_PROP_LOSSLESS);
    preroll_ = lossless ? 0 : std::max<std::int64_t>(sourceRate_ / 4, codec_->seek_preroll);
}

bool FfmpegDecoder::prime(EngineError& error) {
    if (!frame_ || !packet_) {
        error = EngineError::Memory;
        return false;
    }
    if (!refill()) {
        error = EngineError::FileFormat;
        return false;
    }
    return true;
}

// The next decoded frame into frame_; false once the decoder has given everything.
bool FfmpegDecoder::decodeNextFrame() {
    if (heldFrame_) {
        heldFrame_ = false;
        return true;
    }
    while (!decoderDone_) {
        int got = avcodec_receive_frame(codec_.get(), frame_.get());
        if (got == 0)
            return true;
        if (got == AVERROR_EOF) {
            decoderDone_ = true;
            break;
        }
        // EAGAIN, or a damaged frame that the decoder reported and passed over: feed it more.
        if (got != AVERROR(EAGAIN) && flushSent_) {
            decoderDone_ = true;
            break;
        }
        if (flushSent_)
            continue;
        int read = av_read_frame(format_.get(), packet_.get());
        if (read < 0) {
            // The end, or a read error in a damaged file: play out what was decoded.
            avcodec_send_packet(codec_.get(), nullptr);
            flushSent_ = true;
            continue;
        }
        if (packet_->stream_index == streamIndex_) {
            if (firstPacketTs_ == AV_NOPTS_VALUE)
                firstPacketTs_ = packet_->pts != AV_NOPTS_VALUE ? packet_->pts : startTs_;
            avcodec_send_packet(codec_.get(), packet_.get()); // a bad packet is skipped
        }
        av_packet_unref(packet_.get());
    }
    return false;
}

std::int64_t FfmpegDecoder::sourceStartOf(const AVFrame* frame) {
    std::int64_t pts = frame->best_effort_timestamp;
    if (pts == AV_NOPTS_VALUE)
        return nextSource_;
    return av_rescale_q_rnd(pts - startTs_, stream_->time_base, AVRational{1, sourceRate_},
                            static_cast<AVRounding>(AV_ROUND_NEAR_INF | AV_ROUND_PASS_MINMAX));
}

// Converts frame_'s samples after skipSamples into pending_ (which must be empty), as many as make
// largestConversion output frames at most; used tells how many were taken.
bool FfmpegDecoder::convert(const AVFrame* frame, int skipSamples, int& used) {
    ResamplerInput input = inputOf(frame);
    if (!resampler_ || !(input == resamplerInput_)) {
        resampler_ = makeResampler(frame);
        resamplerInput_ = input;
        if (!resampler_)
            return false;
    }
    const int channels = frame->ch_layout.nb_channels;
    const auto format = static_cast<AVSampleFormat>(frame->format);
    const bool planar = av_sample_fmt_is_planar(format);
    const int sampleBytes = av_get_bytes_per_sample(format);
    planes_.resize(planar ? channels : 1);
    for (std::size_t i = 0; i < planes_.size(); ++i)
        planes_[i] = frame->extended_data[i] + skipSamples * sampleBytes * (planar ? 1 : channels);
    const auto most =
        std::max<std::int64_t>(1, largestConversion * frame->sample_rate / engineRate);
    const int inCount =
        static_cast<int>(std::min<std::int64_t>(frame->nb_samples - skipSamples, most));
    used = inCount;
    const int room = swr_get_out_samples(resampler_.get(), inCount);
    if (room < 0)
        return false;
    if (pending_.size() < static_cast<std::size_t>(room) * outChannels)
        pending_.resize(static_cast<std::size_t>(room) * outChannels);
    auto* out = reinterpret_cast<std::uint8_t*>(pending_.data());
    int made = swr_convert(resampler_.get(), &out, room, planes_.data(), inCount);
    if (made < 0)
        return false;
    keepOutput(made);
    return true;
}

// Drains the resampler's last samples at the end of the source.
bool FfmpegDecoder::flushResampler() {
    resamplerFlushed_ = true;
    if (!resampler_)
        return false;
    const int room = swr_get_out_samples(resampler_.get(), 0);
    if (room <= 0)
        return false;
    if (pending_.size() < static_cast<std::size_t>(room) * outChannels)
        pending_.resize(static_cast<std::size_t>(room) * outChannels);
    auto* out = reinterpret_cast<std::uint8_t*>(pending_.data());
    int made = swr_convert(resampler_.get(), &out, room, nullptr, 0);
    if (made <= 0)
        return false;
    keepOutput(made);
    return true;
}

// Takes `frames` converted frames as pending output, less those a seek still has to drop.
void FfmpegDecoder::keepOutput(int frames) {
    auto made = static_cast<std::size_t>(frames);
    std::size_t dropped = static_cast<std::size_t>(std::min<std::uint64_t>(dropOutput_, made));
    dropOutput_ -= dropped;
    pendingRead_ = dropped;
    pendingFrames_ = made;
}

// Fills pending_ with the next output; false at the end of the source.
bool FfmpegDecoder::refill() {
    pendingRead_ = pendingFrames_ = 0;
    while (pendingRead_ == pendingFrames_) {
        if (!decodeNextFrame()) {
            if (resamplerFlushed_ || !flushResampler()) {
                pendingRead_ = pendingFrames_ = 0;
                return false;
            }
            continue;
        }
        int skip = frameConverted_; // the rest of a large frame goes on where it stopped
        if (skip == 0) {
            std::int64_t first = sourceStartOf(frame_.get());
            nextSource_ = first + frame_->nb_samples;
            if (dropSourceBefore_ != noDrop && nextSource_ <= dropSourceBefore_)
                continue; // wholly before the place a seek wants the resampler to start
            if (dropSourceBefore_ != noDrop && first < dropSourceBefore_)
                skip = static_cast<int>(dropSourceBefore_ - first);
            dropSourceBefore_ = noDrop;
        }
        int used = 0;
        if (!convert(frame_.get(), skip, used))
            return false;
        frameConverted_ = skip + used < frame_->nb_samples ? skip + used : 0;
        heldFrame_ = frameConverted_ > 0;
    }
    return true;
}

std::size_t FfmpegDecoder::render(float* out, std::size_t frames) {
    if (length_.exact) // the rest is the encoder's padding
        frames = static_cast<std::size_t>(
            std::min<std::uint64_t>(frames, length_.frames - std::min(position_, length_.frames)));
    std::size_t done = 0;
    while (done < frames) {
        if (pendingRead_ == pendingFrames_ && !refill())
            break;
        std::size_t n = std::min(frames - done, pendingFrames_ - pendingRead_);
        std::memcpy(out + done * outChannels, pending_.data() + pendingRead_ * outChannels,
                    n * outChannels * sizeof(float));
        pendingRead_ += n;
        done += n;
    }
    position_ += done;
    return done;
}

// A file's size comes from fstat on the descriptor FFmpeg reads, so a file that was replaced or
// deleted under its name still counts as the one opened.
bool FfmpegDecoder::sourceIntact() const {
    return openedSize_ < 0 || avio_size(format_->pb) >= openedSize_;
}

// Moves the demuxer to a stream time and forgets everything decoded before.
bool FfmpegDecoder::restartAt(std::int64_t timestamp) {
    if (av_seek_frame(format_.get(), streamIndex_, timestamp, AVSEEK_FLAG_BACKWARD) < 0)
        return false;
    avcodec_flush_buffers(codec_.get());
    resampler_.reset(); // its delay line holds samples from before the seek
    pendingRead_ = pendingFrames_ = 0;
    heldFrame_ = flushSent_ = decoderDone_ = resamplerFlushed_ = false;
    frameConverted_ = 0;
    return true;
}

// The resampler restarts at a source sample whose output falls on the 44100 Hz grid of a run
// from the start (a multiple of sourceUnit), a little before the target so that its filter has
// history; the output before the target is dropped, so a seek gives the samples a straight run
// would have given.
bool FfmpegDecoder::seek(std::uint64_t frame) {
    if (frame > length_.frames)
        return false;
    const std::int64_t divisor = std::gcd(sourceRate_, engineRate);
    const std::int64_t sourceUnit = sourceRate_ / divisor, outputUnit = engineRate / divisor;
    const std::int64_t target =
        av_rescale(static_cast<std::int64_t>(frame), sourceRate_, engineRate);
    const std::int64_t filterHistory = sourceRate_ == engineRate ? 0 : 64 + sourceUnit;
    std::int64_t start = target - preroll_ - filterHistory;
    // Near the beginning the decoder warms up on the file's first packets, which may lie before
    // its first audible sample (AAC's priming frame).
    const std::int64_t startTs =
        std::max(startTs_ + av_rescale_q(start, AVRational{1, sourceRate_}, stream_->time_base),
                 firstPacketTs_);
    start = std::max<std::int64_t>(start, 0);
    start -= start % sourceUnit;
    if (!restartAt(startTs))
        return false;
    if (decodeNextFrame()) {
        heldFrame_ = true;
        // A demuxer that guessed its way past the target (a byte-rate estimate) cannot give the
        // samples before it: decode from the beginning instead.
        if (start > 0 && sourceStartOf(frame_.get()) > start && !restartAt(firstPacketTs_))
            return false;
    }
    nextSource_ = start;
    dropSourceBefore_ = start;
    dropOutput_ = frame - static_cast<std::uint64_t>(start / sourceUnit * outputUnit);
    position_ = frame;
    refill();
    return true;
}

void logFailure(const std::string& path, const std::string& why) {
    logOut("FFmpeg decoder: cannot play %s: %s\n", path.c_str(), why.c_str());
}

// What the system says when a path cannot be read at all; a probe that reads past the end of a
// short file fails with another errno, and that file is not what it claims to be.
constexpr int fileOpenErrors[] = {ENOENT, EACCES, EPERM, EISDIR, ENOTDIR, ELOOP, ENAMETOOLONG};

FormatPtr openFormat(const std::string& path, EngineError& error) {
    AVFormatContext* raw = nullptr;
    int opened = avformat_open_input(&raw, path.c_str(), nullptr, nullptr);
    if (opened < 0) { // FFmpeg has freed the context
        error = std::ranges::find(fileOpenErrors, -opened) != std::end(fileOpenErrors)
                    ? EngineError::FileOpen
                : opened == AVERROR(ENOMEM) ? EngineError::Memory
                                            : EngineError::FileFormat;
        logFailure(path, errorText(opened));
        return nullptr;
    }
    FormatPtr format(raw);
    int probed = avformat_find_stream_info(format.get(), nullptr);
    if (probed < 0) {
        error = EngineError::FileFormat;
        logFailure(path, errorText(probed));
        return nullptr;
    }
    return format;
}

CodecPtr openCodec(const std::string& path, const AVStream* stream, const AVCodec* codec,
                   EngineError& error) {
    CodecPtr context(avcodec_alloc_context3(codec));
    if (!context) {
        error = EngineError::Memory;
        logFailure(path, "out of memory");
        return nullptr;
    }
    int made = avcodec_parameters_to_context(context.get(), stream->codecpar);
    // The decoder moves frame times past the samples it skips only if it knows their time base.
    context->pkt_timebase = stream->time_base;
    if (made >= 0)
        made = avcodec_open2(context.get(), codec, nullptr);
    if (made < 0) {
        error = EngineError::Codec;
        logFailure(path,
                   "cannot open the " + std::string(codec->name) + " decoder: " + errorText(made));
        return nullptr;
    }
    return context;
}

// The format context, probed on the calling thread, goes to the decode thread with the opener.
class FfmpegOpener final : public SourceOpener {
  public:
    FfmpegOpener(FormatPtr format, int index, const AVCodec* codec, Length length, std::string path)
        : format_(std::move(format)), index_(index), codec_(codec), length_(length),
          path_(std::move(path)) {}

    std::unique_ptr<Decoder> open(const std::vector<SoundFontRef>&, EngineError& error) override {
        CodecPtr context = openCodec(path_, format_->streams[index_], codec_, error);
        if (!context)
            return nullptr;
        auto decoder = std::make_unique<FfmpegDecoder>(std::move(format_), std::move(context),
                                                       index_, length_);
        if (!decoder->prime(error)) {
            logFailure(path_, error == EngineError::Memory ? "out of memory" : "no audio decoded");
            return nullptr;
        }
        error = EngineError::Ok;
        return decoder;
    }

  private:
    FormatPtr format_;
    int index_;
    const AVCodec* codec_;
    Length length_;
    std::string path_;
};

} // namespace

// FFmpeg's log level is one setting of the whole process, owned by the library rather than by
// any player state; it is set on the first probe, from whichever thread that is, so that no
// caller has to remember it.
void quietFfmpegLog() {
    static const bool quiet = (av_log_set_level(AV_LOG_ERROR), true);
    (void)quiet;
}

ProbedFile describeFfmpegSource(FormatPtr format, const std::string& path, bool live,
                                EngineError& error) {
    const AVCodec* codec = nullptr;
    int index = av_find_best_stream(format.get(), AVMEDIA_TYPE_AUDIO, -1, -1, &codec, 0);
    if (index < 0) {
        error = index == AVERROR_DECODER_NOT_FOUND ? EngineError::Codec : EngineError::FileFormat;
        logFailure(path, index == AVERROR_DECODER_NOT_FOUND ? "no decoder for its audio"
                                                            : "no audio stream");
        return {};
    }
    AVStream* stream = format->streams[index];
    if (stream->codecpar->sample_rate <= 0 || stream->codecpar->ch_layout.nb_channels <= 0) {
        error = EngineError::FileFormat;
        logFailure(path, "its audio has no rate or channels");
        return {};
    }
    if (stream->codecpar->sample_rate > highestSourceRate) {
        error = EngineError::FileFormat;
        logFailure(path, "its rate is past 768 kHz");
        return {};
    }
    for (unsigned i = 0; i < format->nb_streams; ++i) // cover art and the like are never read
        if (static_cast<int>(i) != index)
            format->streams[i]->discard = AVDISCARD_ALL;
    Length length = live ? Length{} : lengthOf(format.get(), stream, path);
    SourceFacts facts{length.frames, stream->codecpar->sample_rate,
                      stream->codecpar->ch_layout.nb_channels};
    error = EngineError::Ok;
    ProbedFile probed;
    probed.facts = facts;
    probed.opener = std::make_unique<FfmpegOpener>(std::move(format), index, codec, length, path);
    return probed;
}

// avformat_open_input and avformat_find_stream_info: a millisecond or two for a local file, and
// the only exact way to the rate of an MP3 and to the length of one without a LAME tag.
ProbedFile probeFfmpegFile(const std::string& path, EngineError& error) {
    quietFfmpegLog();
    FormatPtr format = openFormat(path, error);
    if (!format)
        return {};
    return describeFfmpegSource(std::move(format), path, false, error);
}

std::unique_ptr<Decoder> openFfmpegDecoder(const std::string& path, EngineError& error) {
    ProbedFile probed = probeFfmpegFile(path, error);
    return probed.opener ? probed.opener->open({}, error) : nullptr;
}

bool decoderRoleAvailable(const std::string& role) {
    if (role == "flac")
        return avcodec_find_decoder(AV_CODEC_ID_FLAC) != nullptr;
    if (role == "aac")
        return avcodec_find_decoder(AV_CODEC_ID_AAC) != nullptr;
    return role == "midi"; // FluidSynth is linked in
}
