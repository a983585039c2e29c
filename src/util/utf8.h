#pragma once
#include <cstddef>
#include <string_view>

// The length of the well-formed UTF-8 sequence at text[at], or 0 when none starts there: overlong
// forms, surrogates, code points past U+10FFFF and sequences cut short are none.
std::size_t utf8SequenceLength(std::string_view text, std::size_t at);
// Whether the whole text is well-formed UTF-8.
bool isValidUtf8(std::string_view text);
