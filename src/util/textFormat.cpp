#include "util/textFormat.h"

#include <cstdarg>
#include <cstddef>
#include <cstdio>

std::string formatText(const char* format, ...) {
    char text[256];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    return text;
}

std::string groupedNumber(long long value) {
    // Through unsigned, so that the most negative value has a magnitude too.
    unsigned long long magnitude = value < 0 ? 0ULL - static_cast<unsigned long long>(value)
                                             : static_cast<unsigned long long>(value);
    std::string digits = std::to_string(magnitude);
    for (std::ptrdiff_t at = static_cast<std::ptrdiff_t>(digits.size()) - 3; at > 0; at -= 3)
        digits.insert(static_cast<std::size_t>(at), 1, ',');
    return value < 0 ? "-" + digits : digits;
}
