#pragma once
#include <string>
#include <string_view>

// Makes bytes the whole content of path: written to a temporary file in the same folder and
// renamed over the old one (a link is followed to its target), so a crash, a full disk or another
// program reading at that moment never meets half a file. False, with the old file intact and no
// temporary file left, when it cannot be written; the caller decides whether that is worth a line.
bool writeFileAtomically(const std::string& path, std::string_view bytes);
