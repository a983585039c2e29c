#pragma once
#include <atomic>
#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// What a test station answers on one path.
struct StationReply {
    std::string head;  // status line and header lines, each ended by "\r\n"; the blank line too
    std::string audio; // sent after the head, over and over
    std::size_t metaInterval = 0;    // a metadata block after every so many audio bytes; 0: none
    std::vector<std::string> titles; // metadata in turn, each for `blocksPerTitle` blocks; not
                                     // empty where there is an interval
    std::size_t blocksPerTitle = 4;
    std::size_t audioLimit = 0; // audio bytes in all, then the end below; 0: no end
    bool closeAtLimit = true;   // else the connection stays open and silent
    bool silent = false;        // nothing at all is sent, not even the head
};

// A server that accepts the connection and never answers, not even with a head.
StationReply silentReply();
// A web page rather than a station: this status and body, then the connection closes.
StationReply webPage(const std::string& body, const std::string& status = "200 OK");

// A station on 127.0.0.1 at a free port, for tests and benchmarks: each connection is read up to
// its request's end and served on a thread of its own, as the path asks, without its query
// (unknown paths get a 404).
// Silent connections stay open until the server is destroyed.
class IcyServer {
  public:
    explicit IcyServer(std::map<std::string, StationReply> replies);
    ~IcyServer();
    IcyServer(const IcyServer&) = delete;
    IcyServer& operator=(const IcyServer&) = delete;

    std::string url(const std::string& path) const;
    // The request lines of every connection so far.
    std::vector<std::string> requests() const;

  private:
    void acceptLoop();
    void serve(int socket);
    bool sendAll(int socket, const std::string& bytes);
    void sendAudio(int socket, const StationReply& reply);

    std::map<std::string, StationReply> replies_;
    int listener_ = -1;
    int port_ = 0;
    std::atomic<bool> stopping_{false};
    mutable std::mutex lock_;
    std::vector<std::string> requests_;
    std::vector<std::thread> connections_;
    std::thread acceptor_;
};
