#pragma once
#include "util/jsonFile.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

// The rows of a list in a file, each read whole by read(element, row) or left out. Rows that
// could not be read are told in one line, and the file is copied aside before a save replaces it.
template <typename Row, typename Read>
std::vector<Row> readJsonRows(const nlohmann::json& list, const std::string& path, const char* what,
                              Read read) {
    std::vector<Row> rows;
    rows.reserve(list.size());
    std::size_t dropped = 0;
    for (const nlohmann::json& element : list) {
        Row row;
        if (element.is_object() && read(element, row))
            rows.push_back(std::move(row));
        else
            ++dropped;
    }
    if (dropped > 0)
        setAsideDamaged(path, std::to_string(dropped) + " " + what +
                                  " could not be read and were left out");
    return rows;
}
