#pragma once
#include <string>

// printf into a string, for the texts the screen shows ("Time: %02d:%02d", "%.1f").
[[gnu::format(printf, 1, 2)]] std::string formatText(const char* format, ...);

// A number in decimal digits with a comma between groups of three from the right and a leading
// "-" when negative, whatever the locale: 1234567 is "1,234,567".
std::string groupedNumber(long long value);
