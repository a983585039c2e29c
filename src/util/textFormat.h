#pragma once
#include <string>

// printf into a string, for the texts the screen shows ("Time: %02d:%02d", "%.1f").
[[gnu::format(printf, 1, 2)]] std::string formatText(const char* format, ...);
