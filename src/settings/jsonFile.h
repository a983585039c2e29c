#pragma once
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

// The one reading and writing path of the player's JSON files. A missing file is a normal state
// (nullopt, no message); a damaged one gives one line on the error stream and nullopt too.
std::optional<nlohmann::json> readJsonFile(const std::string& path);
// Sorted keys, an indent of 4, non-ASCII text as it is, no line end at the end. False when the
// file cannot be opened for writing.
bool writeJsonFile(const std::string& path, const nlohmann::json& document);
