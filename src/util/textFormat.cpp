#include "util/textFormat.h"

#include <cstdarg>
#include <cstdio>

std::string formatText(const char* format, ...) {
    char text[256];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    return text;
}
