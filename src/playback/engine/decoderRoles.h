#pragma once
#include <string>

// The decoder roles "midi", "aac" and "flac": what a plug-in name asks for, and what a file needs.

// The role a plug-in file name asks for ("bassmidi.dll" asks for "midi"), in any case; empty when
// it names none.
std::string roleOfPluginName(const std::string& name);
// The role a file with this extension (dot included, lower case) needs; empty when the core
// decoders serve it.
std::string roleOfExtension(const std::string& extension);
