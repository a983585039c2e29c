#include "util/utf8.h"

std::size_t utf8SequenceLength(std::string_view text, std::size_t at) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(at);
    if (lead < 0x80)
        return 1;
    std::size_t length = 0;
    unsigned char low = 0x80, high = 0xBF; // the range of the first continuation byte
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        if (lead == 0xE0)
            low = 0xA0; // overlong
        if (lead == 0xED)
            high = 0x9F; // surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        if (lead == 0xF0)
            low = 0x90; // overlong
        if (lead == 0xF4)
            high = 0x8F; // past U+10FFFF
    } else {
        return 0;
    }
    if (text.size() - at < length || byte(at + 1) < low || byte(at + 1) > high)
        return 0;
    for (std::size_t k = 2; k < length; ++k)
        if (byte(at + k) < 0x80 || byte(at + k) > 0xBF)
            return 0;
    return length;
}

bool isValidUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = utf8SequenceLength(text, at);
        if (length == 0)
            return false;
        at += length;
    }
    return true;
}
