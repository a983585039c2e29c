#include "update/versionCheck.h"

#include "playback/engine/curlHandles.h"
#include "update/makerSite.h"
#include "util/log.h"

#include <algorithm>
#include <ctime>

namespace {

// A version is a few bytes; a server that sends more is no version server, and a body that
// never ends must not grow without bound. What fits is still compared.
constexpr std::size_t bodyLimit = 64 * 1024;
// The request blocks the user-interface thread: at start-up and in every paint of the Update
// window. The connect time-out covers the name lookup too.
constexpr long connectTimeoutMs = 3000;
constexpr long totalTimeoutMs = 5000;

std::size_t appendBody(char* data, std::size_t size, std::size_t count, void* user) {
    const std::size_t total = size * count;
    // Past the limit the transfer stops here.
    return appendVersionBody(*static_cast<std::string*>(user), {data, total}) ? total : 0;
}

// libcurl's global set-up and clean-up for one request. The stations' reader threads may be
// running transfers meanwhile, which only a thread-safe libcurl allows; without one the pair is
// left out, and curl_easy_init sets libcurl up once by itself: at start-up, before any reader
// thread exists.
class CurlGlobal {
  public:
    CurlGlobal()
        : owned_((curl_version_info(CURLVERSION_NOW)->features & CURL_VERSION_THREADSAFE) != 0 &&
                 curl_global_init(CURL_GLOBAL_ALL) == CURLE_OK) {}
    ~CurlGlobal() {
        if (owned_)
            curl_global_cleanup();
    }
    CurlGlobal(const CurlGlobal&) = delete;
    CurlGlobal& operator=(const CurlGlobal&) = delete;

  private:
    bool owned_;
};

// The body as far as it came; empty when no handle could be made.
std::string fetchVersionText(const std::string& baseAddress) {
    std::string body;
    // Every request asks anew, past any cache on the way.
    ListPtr headers(curl_slist_append(nullptr, "Cache-Control: no-cache"));
    EasyPtr easy(curl_easy_init()); // freed before the list it names
    if (!easy)
        return body;
    const std::string url = baseAddress + "/Downloads/version.txt?nocache=" +
                            std::to_string(static_cast<long long>(std::time(nullptr)));
    CURL* c = easy.get();
    curl_easy_setopt(c, CURLOPT_URL, url.c_str());
    curl_easy_setopt(c, CURLOPT_WRITEFUNCTION, appendBody);
    curl_easy_setopt(c, CURLOPT_WRITEDATA, &body);
    curl_easy_setopt(c, CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(c, CURLOPT_CONNECTTIMEOUT_MS, connectTimeoutMs);
    curl_easy_setopt(c, CURLOPT_TIMEOUT_MS, totalTimeoutMs);
    // The time-outs without SIGALRM: the program has other threads.
    curl_easy_setopt(c, CURLOPT_NOSIGNAL, 1L);
    const CURLcode result = curl_easy_perform(c);
    if (result != CURLE_OK)
        logErr("curl_easy_perform() failed: %s\n", curl_easy_strerror(result));
    return body;
}

} // namespace

std::string makerAddress() {
    return std::string("http://") + makerHost;
}

bool appendVersionBody(std::string& body, std::string_view piece) {
    const std::size_t room = bodyLimit - std::min(body.size(), bodyLimit);
    body.append(piece.substr(0, room));
    return piece.size() <= room;
}

bool isNewerVersion(std::string_view offered) {
    // char_traits<char> compares as unsigned bytes, the shorter text first on a common start.
    return std::string_view(programVersion) < offered;
}

bool checkForNewVersion(const std::string& baseAddress, std::string& latest) {
    std::string body;
    {
        CurlGlobal global;
        body = fetchVersionText(baseAddress);
    }
    if (!isNewerVersion(body))
        return false;
    latest = std::move(body);
    return true;
}

std::string updateText(bool newer, const std::string& latest) {
    if (!newer)
        return "You are using the latest version ";
    return "Update Available! The latest version is " + latest + " Current Version " +
           programVersion;
}

std::string downloadsPageAddress() {
    return makerAddress() + "/download-marble-tunnel/";
}
