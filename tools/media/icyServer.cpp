#include "media/icyServer.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr int pollMs = 50;

// Every wait of a socket ends after pollMs, so that its thread sees the server stopping.
void setTimeouts(int socket) {
    timeval wait{0, pollMs * 1000};
    ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof wait);
    ::setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &wait, sizeof wait);
}

bool timedOut() {
    return errno == EAGAIN || errno == EWOULDBLOCK;
}

// The length byte and the text padded with zero bytes to a multiple of 16; L 0 when unchanged.
std::string metaBlock(const std::string& text, bool changed) {
    if (!changed || text.empty())
        return std::string(1, '\0');
    std::size_t blocks = (text.size() + 15) / 16;
    std::string block(1, static_cast<char>(blocks));
    block += text;
    block.resize(1 + blocks * 16, '\0');
    return block;
}

// The next `size` bytes of `audio` played in a loop, from `offset` on.
std::string loopedSlice(const std::string& audio, std::size_t offset, std::size_t size) {
    std::string out(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        out[i] = audio[(offset + i) % audio.size()];
    return out;
}

} // namespace

StationReply silentReply() {
    StationReply reply;
    reply.silent = true;
    return reply;
}

StationReply webPage(const std::string& body, const std::string& status) {
    StationReply reply;
    reply.head =
        "HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n";
    reply.audio = body;
    reply.audioLimit = body.size();
    return reply;
}

IcyServer::IcyServer(std::map<std::string, StationReply> replies) : replies_(std::move(replies)) {
    listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (listener_ < 0 || ::bind(listener_, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
        ::listen(listener_, 16) != 0 ||
        ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length) != 0)
        throw std::runtime_error("the test station cannot listen");
    port_ = ntohs(address.sin_port);
    setTimeouts(listener_);
    acceptor_ = std::thread([this] { acceptLoop(); });
}

IcyServer::~IcyServer() {
    stopping_ = true;
    acceptor_.join();
    for (std::thread& connection : connections_)
        connection.join();
    ::close(listener_);
}

std::string IcyServer::url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(port_) + path;
}

std::vector<std::string> IcyServer::requests() const {
    std::lock_guard lock(lock_);
    return requests_;
}

void IcyServer::acceptLoop() {
    while (!stopping_) {
        int socket = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0)
            continue;
        setTimeouts(socket);
        connections_.emplace_back([this, socket] {
            serve(socket);
            ::close(socket);
        });
    }
}

bool IcyServer::sendAll(int socket, const std::string& bytes) {
    std::size_t sent = 0;
    while (sent < bytes.size() && !stopping_) {
        ssize_t n = ::send(socket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (n <= 0 && !timedOut())
            return false;
        sent += static_cast<std::size_t>(std::max<ssize_t>(n, 0));
    }
    return sent == bytes.size();
}

void IcyServer::serve(int socket) {
    std::string request;
    char buffer[4096];
    while (request.find("\r\n\r\n") == std::string::npos && !stopping_) {
        ssize_t n = ::recv(socket, buffer, sizeof buffer, 0);
        if (n == 0 || (n < 0 && !timedOut()))
            return;
        request.append(buffer, static_cast<std::size_t>(std::max<ssize_t>(n, 0)));
    }
    {
        std::lock_guard lock(lock_);
        requests_.push_back(request);
    }
    std::string path = request.substr(4, request.find(' ', 4) - 4); // "GET /path HTTP/1.1"
    path.erase(std::min(path.find('?'), path.size()));              // the query is in requests()
    auto found = replies_.find(path);
    if (found == replies_.end()) {
        sendAll(socket, "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n");
        return;
    }
    const StationReply& reply = found->second;
    if (!reply.silent && sendAll(socket, reply.head))
        sendAudio(socket, reply);
    while ((reply.silent || !reply.closeAtLimit) && !stopping_) // silent until the test ends
        std::this_thread::sleep_for(std::chrono::milliseconds(pollMs));
}

void IcyServer::sendAudio(int socket, const StationReply& reply) {
    std::size_t sent = 0, blocks = 0;
    std::string lastTitle;
    while (!stopping_ && !reply.audio.empty()) {
        std::size_t chunk = reply.metaInterval ? reply.metaInterval : 4096;
        if (reply.audioLimit)
            chunk = std::min(chunk, reply.audioLimit - sent);
        if (!sendAll(socket, loopedSlice(reply.audio, sent, chunk)))
            break;
        sent += chunk;
        if (reply.audioLimit && sent >= reply.audioLimit)
            break;
        if (reply.metaInterval) {
            const std::string& title =
                reply.titles[blocks / reply.blocksPerTitle % reply.titles.size()];
            if (!sendAll(socket, metaBlock(title, title != lastTitle)))
                break;
            lastTitle = title;
            ++blocks;
        }
    }
}
