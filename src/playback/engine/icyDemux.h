#pragma once
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Splits a station's body into audio and in-band metadata. A server that was asked for metadata
// and answered "icy-metaint: N" sends N audio bytes, then a length byte L and 16 * L bytes of
// text, again and again. Pure: bytes in, bytes out, so that any input can be fed to it.
struct IcyDemux {
    std::size_t interval = 0;  // N; 0: the body is all audio
    std::size_t audioLeft = 0; // audio bytes before the next length byte
    std::size_t metaLeft = 0;  // text bytes still to come of the current block
    bool inMeta = false;
    std::string block; // the current block so far
    std::string meta;  // the newest block with text, up to its first zero byte
};

// The value of the first header line whose key is `key` (given in lower case; the line's case is
// ignored), blanks around it trimmed; empty when none has it. The first line, the status, is none.
std::string headerValue(const std::vector<std::string>& lines, const std::string& key);
// The N of an "icy-metaint" value ("8192", " 8192"); 0 for none, no number or one too large.
std::size_t parseMetaInterval(std::string_view value);
IcyDemux makeIcyDemux(std::size_t interval);
// Appends the audio bytes of `in` to audio; true when `meta` changed.
bool feedIcy(IcyDemux& demux, std::string_view in, std::string& audio);
