#pragma once
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>

NLOHMANN_JSON_NAMESPACE_BEGIN
template <typename BasicJsonType> struct json_sax;
NLOHMANN_JSON_NAMESPACE_END

// The one reading and writing path of the player's JSON files.

// A missing file is a normal state: nullopt, no message. A damaged one (not JSON, empty, random
// bytes) gives one line on the error stream, is copied aside for the user (setAsideDamaged) and
// reads as nullopt too. A file holding the single word null reads as a null document.
// read, when given, tells a missing file from a damaged one, so the caller opens the file once.
enum class JsonRead { Missing, NotJson, Read };
std::optional<nlohmann::json> readJsonFile(const std::string& path, JsonRead* read = nullptr);

// The same reading for a file too large to hold as a document: the parse events go to events as
// they come. On text that is not JSON the events so far have been delivered, and the file is
// reported and copied aside as above.
JsonRead readJsonEvents(const std::string& path, nlohmann::json_sax<nlohmann::json>& events);

// For a reader that found the JSON sound but its content wrong (a root or a key of the wrong
// type, a required key missing): one line naming the file and why, and a copy of it beside it
// under "NAME.bad-YYYYMMDD-HHMMSS", so the next save cannot destroy what the user had.
void setAsideDamaged(const std::string& path, const std::string& why);

// Sorted keys, an indent of 4, non-ASCII text as it is, no line end at the end, "null" for a
// null document. Written whole by writeFileAtomically (util/atomicFile.h), so a crash or a full
// disk never leaves half a file. False, with the old file intact, when it cannot be written.
bool writeJsonFile(const std::string& path, const nlohmann::json& document);

// The same atomic write for JSON text that a writer too large for a document built itself, in
// the layout above.
bool writeJsonText(const std::string& path, const std::string& text);
// Appends text as a JSON string exactly as the documents above write it: quoted, escaped, and
// bytes that are not UTF-8 replaced by U+FFFD.
void appendJsonString(std::string& out, std::string_view text);
// The same for text already known to be valid UTF-8, which is not checked again.
void appendUtf8JsonString(std::string& out, std::string_view text);
// The start of one "KEY": VALUE line of an object at the given indent, in the layout above.
void appendJsonKey(std::string& out, int indent, const char* key);

// An integer field of a file: any JSON number, cut toward zero, or a boolean as 0 or 1. A number
// past the 32-bit range, or another type, is refused and leaves out untouched.
bool readJsonInt(const nlohmann::json& value, int& out);
