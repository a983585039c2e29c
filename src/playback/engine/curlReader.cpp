// The reader thread of an internet stream: libcurl's multi interface, so that a stop wakes its
// wait on the network at once instead of at libcurl's next timer.
#include "playback/engine/curlReader.h"

#include "playback/engine/channel.h"
#include "playback/engine/curlHandles.h"
#include "playback/engine/icyDemux.h"
#include "util/ascii.h"
#include "util/log.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <thread>

namespace {

// Headers larger than this are no station's; a server that keeps sending them is refused.
constexpr std::size_t headerLimit = 64 * 1024;
// Audio read ahead of the decoder: about 16 s at 128 kbit/s, so a short hiccup of the network
// never reaches the ring, while a paused stream holds little memory.
constexpr std::size_t bufferLimit = 256 * 1024;
constexpr auto stallLimit = std::chrono::seconds(5);

ListPtr appendTo(ListPtr list, const char* text) {
    curl_slist* grown = curl_slist_append(list.get(), text);
    if (!grown)
        return list;
    (void)list.release();
    return ListPtr(grown);
}

bool httpOrHttps(const std::string& url) {
    std::string head = asciiLower(url.substr(0, 8));
    return head.starts_with("http://") || head.starts_with("https://");
}

} // namespace

struct CurlReaderState {
    EasyPtr easy{curl_easy_init()};
    MultiPtr multi{curl_multi_init()};
    ListPtr requestHeaders;
    ListPtr aliases;
    std::atomic<bool> stopped{false};

    mutable std::mutex lock;
    std::condition_variable changed;
    // The reader thread's, under the lock: the answer being read.
    std::vector<std::string> lines;
    std::size_t headerBytes = 0;
    bool answerEnded = false; // the next line starts another answer (after a redirect)
    bool headersDone = false;
    bool finished = false;
    bool handedOver = false; // a channel plays it: its end is worth a line
    std::string endReason;
    std::string failure;
    EngineError failureCode = EngineError::FileOpen;
    IcyDemux demux;
    std::string audio;
    std::size_t readFrom = 0;
    Clock::time_point lastByte;
};

namespace {

void failLocked(CurlReaderState& s, std::string why, EngineError code) {
    if (s.failure.empty()) {
        s.failure = std::move(why);
        s.failureCode = code;
    }
}

// One header line of some answer; the blank line ends it. Only an answer with status 200 is
// taken; redirects and interim answers are passed over, anything else fails.
std::size_t onHeader(char* data, std::size_t size, std::size_t count, void* user) {
    auto& s = *static_cast<CurlReaderState*>(user);
    const std::size_t total = size * count;
    std::lock_guard lock(s.lock);
    s.headerBytes += total;
    if (s.headerBytes > headerLimit) {
        failLocked(s, "its headers are larger than 64 KiB", EngineError::FileOpen);
        return 0;
    }
    std::string line(data, total);
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
        line.pop_back();
    if (!line.empty()) {
        if (s.answerEnded)
            s.lines.clear();
        s.answerEnded = false;
        s.lines.push_back(std::move(line));
        return total;
    }
    s.answerEnded = true;
    long code = 0;
    curl_easy_getinfo(s.easy.get(), CURLINFO_RESPONSE_CODE, &code);
    if (code / 100 == 1 || (code / 100 == 3 && !headerValue(s.lines, "location").empty()))
        return total; // libcurl follows, or stops at its limit of redirects
    if (code != 200) {
        std::string status = s.lines.empty() ? std::string() : s.lines.front();
        failLocked(s, "it answered \"" + status + "\"", EngineError::FileOpen);
        return 0;
    }
    s.demux = makeIcyDemux(parseMetaInterval(headerValue(s.lines, "icy-metaint")));
    s.headersDone = true;
    s.lastByte = Clock::now();
    s.changed.notify_all();
    return total;
}

// Body bytes of the final answer: audio into the buffer, metadata into META. Waits while the
// buffer is full (a paused stream), which holds the server back.
std::size_t onBody(char* data, std::size_t size, std::size_t count, void* user) {
    auto& s = *static_cast<CurlReaderState*>(user);
    const std::size_t total = size * count;
    std::unique_lock lock(s.lock);
    if (!s.headersDone)
        return total; // the body of a redirect
    s.changed.wait(lock,
                   [&s] { return s.stopped.load() || s.audio.size() - s.readFrom < bufferLimit; });
    if (s.stopped.load())
        return 0;
    feedIcy(s.demux, std::string_view(data, total), s.audio);
    s.lastByte = Clock::now();
    s.changed.notify_all();
    return total;
}

int onProgress(void* user, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    return static_cast<CurlReaderState*>(user)->stopped.load() ? 1 : 0;
}

void configure(CurlReaderState& s, const std::string& url, Clock::time_point deadline) {
    CURL* c = s.easy.get();
    s.requestHeaders = appendTo(std::move(s.requestHeaders), "Icy-MetaData: 1");
    // Without the alias libcurl takes a SHOUTcast answer for HTTP/0.9 and refuses it.
    s.aliases = appendTo(std::move(s.aliases), "ICY 200 OK");
    auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    curl_easy_setopt(c, CURLOPT_URL, url.c_str());
    curl_easy_setopt(c, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(c, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(c, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(c, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(c, CURLOPT_MAXREDIRS, 5L);
    curl_easy_setopt(c, CURLOPT_HTTPHEADER, s.requestHeaders.get());
    curl_easy_setopt(c, CURLOPT_HTTP200ALIASES, s.aliases.get());
    curl_easy_setopt(c, CURLOPT_USERAGENT, "MarbleTunnelRadio");
    curl_easy_setopt(c, CURLOPT_CONNECTTIMEOUT_MS,
                     static_cast<long>(std::max<long>(1, left.count())));
    curl_easy_setopt(c, CURLOPT_HEADERFUNCTION, onHeader);
    curl_easy_setopt(c, CURLOPT_HEADERDATA, &s);
    curl_easy_setopt(c, CURLOPT_WRITEFUNCTION, onBody);
    curl_easy_setopt(c, CURLOPT_WRITEDATA, &s);
    curl_easy_setopt(c, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(c, CURLOPT_XFERINFOFUNCTION, onProgress);
    curl_easy_setopt(c, CURLOPT_XFERINFODATA, &s);
}

// Why a transfer that libcurl ended has ended.
std::string endReason(CURLM* multi) {
    int left = 0;
    while (CURLMsg* msg = curl_multi_info_read(multi, &left)) {
        if (msg->msg != CURLMSG_DONE)
            continue;
        if (msg->data.result == CURLE_OK)
            return "the server closed the connection";
        return curl_easy_strerror(msg->data.result);
    }
    return "the transfer ended";
}

} // namespace

bool startNetwork() {
    return curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
}

CurlReader::CurlReader(std::string address)
    : url(std::move(address)), state_(std::make_unique<CurlReaderState>()) {}

CurlReader::~CurlReader() = default;

void CurlReader::stop() {
    {
        std::lock_guard lock(state_->lock);
        state_->stopped.store(true);
    }
    state_->changed.notify_all();
    if (state_->multi)
        curl_multi_wakeup(state_->multi.get());
}

void CurlReader::run() {
    CurlReaderState& s = *state_;
    CURLM* multi = s.multi.get();
    curl_multi_add_handle(multi, s.easy.get());
    std::string reason;
    for (;;) {
        if (s.stopped.load())
            break;
        int running = 0;
        CURLMcode done = curl_multi_perform(multi, &running);
        if (done != CURLM_OK) {
            reason = curl_multi_strerror(done);
            break;
        }
        if (running == 0) {
            reason = endReason(multi);
            break;
        }
        {
            std::lock_guard lock(s.lock);
            if (s.headersDone && Clock::now() - s.lastByte > stallLimit) {
                reason = "nothing came for 5 seconds";
                break;
            }
        }
        curl_multi_poll(multi, nullptr, 0, 500, nullptr);
    }
    curl_multi_remove_handle(multi, s.easy.get());
    {
        std::lock_guard lock(s.lock);
        failLocked(s, s.headersDone ? reason : "no answer with status 200: " + reason,
                   EngineError::FileOpen);
        // Before the decoder can see the end, so that the line comes before the channel stops.
        if (s.handedOver && !s.stopped.load())
            logOut("Internet stream %s ends: %s\n", url.c_str(), reason.c_str());
        s.endReason = reason;
        s.finished = true;
    }
    s.changed.notify_all();
}

void CurlReader::handOver() {
    bool ended = false;
    {
        std::lock_guard lock(state_->lock);
        state_->handedOver = true;
        ended = state_->finished && !state_->stopped.load();
    }
    if (ended) // while it was probed: a short stream the channel still plays to its end
        logOut("Internet stream %s ends: %s\n", url.c_str(), state_->endReason.c_str());
}

namespace {

void logRefusal(const std::string& url, const std::string& why) {
    logOut("Internet stream %s cannot be opened: %s\n", url.c_str(), why.c_str());
}

} // namespace

std::shared_ptr<CurlReader> CurlReader::make(const std::string& url, Clock::time_point deadline,
                                             EngineError& error) {
    if (!httpOrHttps(url)) {
        logRefusal(url, "only http and https are played");
        error = EngineError::FileOpen;
        return nullptr;
    }
    auto reader = std::make_shared<CurlReader>(url);
    CurlReaderState& s = *reader->state_;
    if (!s.easy || !s.multi) {
        logRefusal(url, "libcurl cannot start a transfer");
        error = EngineError::Memory;
        return nullptr;
    }
    configure(s, url, deadline);
    return reader;
}

void CurlReader::start(DecodeThreads& threads) {
    threads.started();
    std::thread([self = shared_from_this(), &threads] {
        self->run();
        threads.finished();
    }).detach();
}

bool CurlReader::waitForAnswer(Clock::time_point deadline, EngineError& error) {
    CurlReaderState& s = *state_;
    std::unique_lock lock(s.lock);
    bool ended = s.changed.wait_until(
        lock, deadline, [&s] { return s.headersDone || s.finished || s.stopped.load(); });
    std::string why = !ended             ? "no answer within 5 seconds"
                      : s.stopped.load() ? "the engine stopped"
                      : !s.headersDone   ? s.failure
                                         : std::string();
    if (!why.empty()) {
        error = !ended ? EngineError::Timeout : s.failureCode;
        lock.unlock();
        stop();
        logRefusal(url, why);
        return false;
    }
    answer.lines = s.lines;
    answer.icy = !s.lines.empty() && s.lines.front().starts_with("ICY");
    answer.contentType = asciiLower(headerValue(s.lines, "content-type"));
    error = EngineError::Ok;
    return true;
}

std::size_t CurlReader::read(unsigned char* out, std::size_t size, Clock::time_point deadline) {
    CurlReaderState& s = *state_;
    std::unique_lock lock(s.lock);
    auto ready = [&s] { return s.audio.size() > s.readFrom || s.finished || s.stopped.load(); };
    if (deadline == Clock::time_point::max())
        s.changed.wait(lock, ready);
    else if (!s.changed.wait_until(lock, deadline, ready))
        return 0;
    if (s.stopped.load())
        return 0;
    std::size_t n = std::min(size, s.audio.size() - s.readFrom);
    std::memcpy(out, s.audio.data() + s.readFrom, n);
    s.readFrom += n;
    if (s.readFrom > bufferLimit / 4) {
        s.audio.erase(0, s.readFrom);
        s.readFrom = 0;
    }
    s.changed.notify_all(); // room for the writer
    return n;
}

bool CurlReader::meta(std::string& out) const {
    std::lock_guard lock(state_->lock);
    if (state_->demux.meta.empty())
        return false;
    out = state_->demux.meta;
    return true;
}
