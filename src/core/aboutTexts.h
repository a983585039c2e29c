#pragma once
#include <array>
#include <string>

// The maker's web site: a name under the reserved example domain, so that no real site is
// named; the Update dialog asks the same host.
constexpr const char* makerHost = "www.fernbridge.example";

// The About window's two paragraphs, as painted.
extern const char* const aboutFirstText;
extern const char* const aboutSecondText;

// The link buttons: id, label and the address they open.
struct AboutLink {
    int id;
    std::string label;
    std::string address;
};
std::array<AboutLink, 4> aboutLinks();
