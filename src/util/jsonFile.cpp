#include "util/jsonFile.h"

#include "util/atomicFile.h"
#include "util/log.h"
#include "util/plainFile.h"
#include "util/utf8.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <limits>
#include <nlohmann/json.hpp>

namespace fs = std::filesystem;

namespace {

std::string timeStamp() {
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char text[32];
    std::strftime(text, sizeof text, "%Y%m%d-%H%M%S", &local);
    return text;
}

enum class FileRead { Missing, NotAFile, Read };

// The whole file. A folder or a device under the name is no file to parse: it would give no
// text, or never end.
FileRead readWholeFile(const std::string& path, std::string& text) {
    FileDescriptor file;
    switch (openRegularFile(path, O_RDONLY, file)) {
    case RegularOpen::Missing:
        return FileRead::Missing;
    case RegularOpen::NotAFile:
        logErr("%s is not a file and is not read.\n", path.c_str());
        return FileRead::NotAFile;
    case RegularOpen::Open:
        break;
    }
    readToEnd(file.get(), text); // a read error keeps what came before it
    return FileRead::Read;
}

} // namespace

std::optional<nlohmann::json> readJsonFile(const std::string& path, JsonRead* read) {
    JsonRead status = JsonRead::NotJson;
    std::string text;
    FileRead file = readWholeFile(path, text);
    std::optional<nlohmann::json> document;
    if (file == FileRead::Missing) {
        status = JsonRead::Missing;
    } else if (file == FileRead::Read) {
        nlohmann::json parsed = nlohmann::json::parse(text, nullptr, false);
        if (parsed.is_discarded()) {
            setAsideDamaged(path, "it is not JSON");
        } else {
            status = JsonRead::Read;
            document = std::move(parsed);
        }
    }
    if (read)
        *read = status;
    return document;
}

JsonRead readJsonEvents(const std::string& path, nlohmann::json_sax<nlohmann::json>& events) {
    std::string text;
    FileRead file = readWholeFile(path, text);
    if (file != FileRead::Read)
        return file == FileRead::Missing ? JsonRead::Missing : JsonRead::NotJson;
    if (!nlohmann::json::sax_parse(text, &events)) {
        setAsideDamaged(path, "it is not JSON");
        return JsonRead::NotJson;
    }
    return JsonRead::Read;
}

void setAsideDamaged(const std::string& path, const std::string& why) {
    std::string aside = path + ".bad-" + timeStamp();
    std::error_code ec;
    fs::copy_file(path, aside, fs::copy_options::skip_existing, ec);
    if (ec)
        logErr("%s is damaged (%s) and could not be copied aside: %s\n", path.c_str(), why.c_str(),
               ec.message().c_str());
    else
        logErr("%s is damaged (%s); a copy is kept as %s\n", path.c_str(), why.c_str(),
               aside.c_str());
}

bool writeJsonFile(const std::string& path, const nlohmann::json& document) {
    return writeJsonText(path,
                         document.dump(4, ' ', false, nlohmann::json::error_handler_t::replace));
}

void appendJsonString(std::string& out, std::string_view text) {
    if (!isValidUtf8(text)) {
        out += nlohmann::json(std::string(text))
                   .dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
        return;
    }
    appendUtf8JsonString(out, text);
}

void appendUtf8JsonString(std::string& out, std::string_view text) {
    static const char hex[] = "0123456789abcdef";
    out += '"';
    std::size_t plain = 0; // start of the run of bytes that go out as they are
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto c = static_cast<unsigned char>(text[i]);
        if (c >= 0x20 && c != '"' && c != '\\')
            continue;
        out.append(text, plain, i - plain);
        plain = i + 1;
        out += '\\';
        switch (c) {
        case '"':
        case '\\':
            out += static_cast<char>(c);
            break;
        case '\b':
            out += 'b';
            break;
        case '\f':
            out += 'f';
            break;
        case '\n':
            out += 'n';
            break;
        case '\r':
            out += 'r';
            break;
        case '\t':
            out += 't';
            break;
        default:
            out += "u00";
            out += hex[c >> 4];
            out += hex[c & 0xf];
        }
    }
    out.append(text, plain);
    out += '"';
}

bool writeJsonText(const std::string& path, const std::string& text) {
    return writeFileAtomically(path, text);
}

// A number past the 32-bit range has no integer to cut to, and counts as the wrong type rather
// than wrapping to something arbitrary.
bool readJsonInt(const nlohmann::json& value, int& out) {
    constexpr double low = std::numeric_limits<int>::min();
    constexpr double high = std::numeric_limits<int>::max();
    if (value.is_boolean()) {
        out = value.get<bool>() ? 1 : 0;
    } else if (value.is_number_unsigned()) {
        auto number = value.get<std::uint64_t>();
        if (number > static_cast<std::uint64_t>(high))
            return false;
        out = static_cast<int>(number);
    } else if (value.is_number_integer()) {
        auto number = value.get<std::int64_t>();
        if (number < low || number > high)
            return false;
        out = static_cast<int>(number);
    } else if (value.is_number_float()) {
        double cut = std::trunc(value.get<double>());
        if (!(cut >= low && cut <= high))
            return false;
        out = static_cast<int>(cut);
    } else {
        return false;
    }
    return true;
}

void appendJsonKey(std::string& out, int indent, const char* key) {
    out.append(static_cast<std::size_t>(indent), ' ');
    out += '"';
    out += key;
    out += "\": ";
}
