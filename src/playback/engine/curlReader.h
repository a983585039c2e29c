#pragma once
#include "playback/engine/engineError.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

class DecodeThreads;
struct CurlReaderState;

using Clock = std::chrono::steady_clock;

// Once per process, before the first reader: libcurl's global set-up is not safe to race with
// the first transfer. False when libcurl cannot start.
bool startNetwork();

// The answer a station gave: its header lines exactly as sent (status line first, without the
// line ends), and what the reader took from them.
struct StationAnswer {
    std::vector<std::string> lines;
    bool icy = false;        // the status line began "ICY": the lines are the ICY tags
    std::string contentType; // the value of "Content-Type", blanks trimmed
};

// One internet stream on a reader thread of its own: the thread connects, follows redirects,
// reads the final answer's headers, then keeps reading the body, split into audio and metadata,
// into a bounded buffer that the stream's decoder empties. Shared by the creating call, the
// channel and the decoder's I/O; the thread ends by itself after stop(), the server's end or 5 s
// without a byte, and counts as one of the engine's threads until then.
class CurlReader : public std::enable_shared_from_this<CurlReader> {
  public:
    explicit CurlReader(std::string url);
    ~CurlReader();
    CurlReader(const CurlReader&) = delete;
    CurlReader& operator=(const CurlReader&) = delete;

    // A reader set up to connect by `deadline`. Null after one log line naming the URL, with
    // error set, when the URL is refused or libcurl cannot start.
    static std::shared_ptr<CurlReader> make(const std::string& url, Clock::time_point deadline,
                                            EngineError& error);
    // Starts the reader thread, which counts among `threads` until it ends.
    void start(DecodeThreads& threads);
    // Waits until the final answer's headers are in (true, `answer` filled), or it failed, was
    // stopped or `deadline` passed (false after one log line naming the URL, error set, the
    // reader stopped).
    bool waitForAnswer(Clock::time_point deadline, EngineError& error);

    // The creating thread, once a channel plays the stream: from now on its end is logged, with
    // the reason, once.
    void handOver();
    // Any thread: the reader thread ends at once, and a read waiting for bytes returns 0.
    void stop();
    // The decoder's thread: waits for audio bytes until there are some, the stream has ended or
    // was stopped (0), or `deadline` passes (0, and the reader is stopped).
    std::size_t read(unsigned char* out, std::size_t size, Clock::time_point deadline);

    const std::string url;
    // How long a read made through the decoder's I/O may wait: the creation's deadline while it
    // probes, none once the channel plays. Set by the creating thread before the decode thread
    // starts.
    Clock::time_point readDeadline = Clock::time_point::max();
    // Written before connect() returns, constant afterwards.
    StationAnswer answer;
    // The newest metadata text; false when none came yet.
    bool meta(std::string& out) const;

  private:
    void run();
    std::unique_ptr<CurlReaderState> state_;
};
