#pragma once
#include <string>
#include <string_view>

// Where the program asks for the newest version: plain http, as the web site serves it.
std::string makerAddress();

// Asks baseAddress + "/Downloads/version.txt" for the newest version, blocking the calling thread
// for at most 5 s (3 s to look up and connect). True when the whole body, untrimmed, sorts after
// programVersion; latest then holds it. A failed request leaves one line on the error stream and
// compares what arrived, if anything; latest is untouched when the answer is not newer.
bool checkForNewVersion(const std::string& baseAddress, std::string& latest);

// Adds a piece of the answer's body, which keeps its first 64 KiB; false once a piece did not
// fit whole, which ends the transfer (what fitted is still compared).
bool appendVersionBody(std::string& body, std::string_view piece);

// Byte strings, never numbers: "1.10" sorts before "1.9", and "1.0\n" after "1.0".
bool isNewerVersion(std::string_view offered);

// What the Update window says after a check.
std::string updateText(bool newer, const std::string& latest);

// The page the Update window's button opens.
std::string downloadsPageAddress();
