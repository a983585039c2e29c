#pragma once
#include <string>

struct InputState;

// Reads hotkeyConfig.json at path into hotkeyTable; false when it cannot be opened (one line).
// A file that is not a list leaves the table as it was; a row that is not a binding keeps its
// id's binding. Either is reported and the file copied aside. Rows past the 30th are kept.
bool loadHotkeys(InputState& st, const std::string& path);
// Writes every row of hotkeyTable; false, after one line, when the file cannot be written.
bool saveHotkeys(const InputState& st, const std::string& path);
