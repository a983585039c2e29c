#pragma once

// Diagnostics in printf style, the line end inside the format. They are not user interface:
// no levels, no prefixes, straight to the process's output and error streams.
[[gnu::format(printf, 1, 2)]] void logOut(const char* format, ...);
[[gnu::format(printf, 1, 2)]] void logErr(const char* format, ...);
