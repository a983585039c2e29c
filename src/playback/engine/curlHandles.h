#pragma once
// Owners of libcurl's handles, for the few .cpp files that talk to libcurl; no header of the
// logic includes this one.
#include <curl/curl.h>
#include <memory>

struct CleanEasy {
    void operator()(CURL* c) const { curl_easy_cleanup(c); }
};
struct CleanMulti {
    void operator()(CURLM* m) const { curl_multi_cleanup(m); }
};
struct FreeList {
    void operator()(curl_slist* l) const { curl_slist_free_all(l); }
};
using EasyPtr = std::unique_ptr<CURL, CleanEasy>;
using MultiPtr = std::unique_ptr<CURLM, CleanMulti>;
using ListPtr = std::unique_ptr<curl_slist, FreeList>;
