#pragma once
#include "update/makerSite.h"

#include <array>
#include <string>

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
