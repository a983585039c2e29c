#include "settings/jsonFile.h"

#include "core/log.h"

#include <fstream>
#include <nlohmann/json.hpp>

std::optional<nlohmann::json> readJsonFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return std::nullopt;
    nlohmann::json document = nlohmann::json::parse(in, nullptr, /*allow_exceptions=*/false);
    if (document.is_discarded()) {
        logErr("%s is damaged and was not read\n", path.c_str());
        return std::nullopt;
    }
    return document;
}

bool writeJsonFile(const std::string& path, const nlohmann::json& document) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out)
        return false;
    // Text that is not valid UTF-8 is written with replacement characters rather than lost.
    out << document.dump(4, ' ', false, nlohmann::json::error_handler_t::replace);
    return static_cast<bool>(out);
}
