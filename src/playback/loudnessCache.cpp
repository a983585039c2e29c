#include "playback/loudnessCache.h"

#include "util/jsonEvents.h"
#include "util/jsonFile.h"
#include "util/log.h"
#include "util/utf8.h"

#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <utility>

namespace {

using Json = nlohmann::json;

const char* resultName(LoudnessResult result) {
    switch (result) {
    case LoudnessResult::Measured:
        return "measured";
    case LoudnessResult::Silent:
        return "silent";
    case LoudnessResult::Failed:
        break;
    }
    return "failed";
}

std::optional<LoudnessResult> resultNamed(const std::string& name) {
    for (LoudnessResult result :
         {LoudnessResult::Measured, LoudnessResult::Silent, LoudnessResult::Failed})
        if (name == resultName(result))
            return result;
    return std::nullopt;
}

// One value of the file as a record, or nothing when a key is missing or of the wrong type.
std::optional<LoudnessRecord> recordOf(const Json& entry) {
    LoudnessRecord record;
    auto text = [&entry](const char* key, std::string& out) {
        auto it = entry.find(key);
        if (it == entry.end() || !it->is_string())
            return false;
        out = it->get<std::string>();
        return true;
    };
    auto integer = [&entry](const char* key, std::int64_t& out) {
        auto it = entry.find(key);
        if (it == entry.end() || !it->is_number_integer())
            return false;
        out = it->get<std::int64_t>();
        return true;
    };
    // No float sample lies further than about 900 dB from full scale, so a level past 1000 dB
    // is no measurement; its gain would not even fit the float the engine takes.
    auto number = [&entry](const char* key, double& out) {
        auto it = entry.find(key);
        if (it == entry.end() || !it->is_number() || !(std::fabs(it->get<double>()) <= 1000.0))
            return false;
        out = it->get<double>();
        return true;
    };
    std::string result;
    std::int64_t family = 0;
    if (!text("path", record.songPath) || !integer("size", record.song.size) ||
        !integer("mtime", record.song.mtimeNs) || !integer("family", family) ||
        !text("result", result) || family < musicTypeMidi || family > musicTypeTracker)
        return std::nullopt;
    record.family = static_cast<MusicType>(family);
    std::optional<LoudnessResult> named = resultNamed(result);
    if (!named)
        return std::nullopt;
    record.result = *named;
    if (record.family == musicTypeMidi &&
        (!text("font", record.fontPath) || !integer("fontSize", record.font.size) ||
         !integer("fontMtime", record.font.mtimeNs)))
        return std::nullopt;
    if (record.result == LoudnessResult::Measured &&
        (!number("lufs", record.lufs) || !number("truePeak", record.truePeakDb)))
        return std::nullopt;
    return record;
}

// Reads {"format": 1, "songs": [{...}, ...]} as the parser walks it: each value is a small flat
// object, built alone and turned into a record at its end, so that a cache of many songs never
// becomes one large document.
class CacheReader : public ScalarJsonEvents {
  public:
    LoudnessTable table;
    std::string problem; // empty while the file is sound

    bool string(string_t& value) override { return scalar(Json(value)); }

    bool start_object(std::size_t) override {
        if (skipping_ == 0 && depth_ == 0) {
            depth_ = 1;
            return true;
        }
        if (skipping_ == 0 && depth_ == 2) {
            entry_ = Json::object();
            depth_ = 3;
            return true;
        }
        if (skipping_ == 0 && depth_ == 1 && inSongs_)
            damaged("its songs are not a list");
        if (skipping_ == 0 && depth_ == 3)
            damaged("a value holds an object");
        ++skipping_;
        return true;
    }
    bool end_object() override {
        if (skipping_ > 0) {
            --skipping_;
            return true;
        }
        if (depth_ == 3) {
            std::optional<LoudnessRecord> record = recordOf(entry_);
            if (record)
                table[loudnessKey(record->songPath, record->fontPath)] = std::move(*record);
            else
                damaged("a value lacks a key or has one of the wrong type or range");
            depth_ = 2;
            return true;
        }
        depth_ = 0;
        return true;
    }
    bool start_array(std::size_t) override {
        if (skipping_ == 0 && depth_ == 1 && inSongs_) {
            depth_ = 2;
            return true;
        }
        if (skipping_ == 0 && depth_ == 0)
            damaged("its root is not an object");
        if (skipping_ == 0 && depth_ >= 2)
            damaged(depth_ == 2 ? "a value is not an object" : "a value holds a list");
        ++skipping_;
        return true;
    }
    bool end_array() override {
        if (skipping_ > 0) {
            --skipping_;
            return true;
        }
        depth_ = 1;
        inSongs_ = false;
        return true;
    }
    bool key(string_t& name) override {
        if (skipping_ > 0)
            return true;
        if (depth_ == 1)
            inSongs_ = name == "songs";
        else
            key_ = name;
        return true;
    }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override {
        return false;
    }

  private:
    bool scalar(const Json& value) override {
        if (skipping_ > 0)
            return true;
        if (depth_ == 0)
            damaged("its root is not an object");
        else if (depth_ == 2)
            damaged("a value is not an object");
        else if (depth_ == 3)
            entry_[key_] = value;
        else if (std::exchange(inSongs_, false))
            damaged("its songs are not a list");
        return true;
    }
    void damaged(const char* why) {
        if (problem.empty())
            problem = why;
    }

    int depth_ = 0; // 0 outside, 1 the root, 2 the list, 3 a value
    int skipping_ = 0;
    bool inSongs_ = false;
    std::string key_;
    Json entry_;
};

// One "KEY": VALUE line of a value, its comma unless it is the last.
void appendLine(std::string& out, const char* key, const std::string& value, bool last = false) {
    appendJsonKey(out, 12, key);
    out += value;
    out += last ? "\n" : ",\n";
}

std::string decibels(double value) {
    char number[48];
    std::snprintf(number, sizeof number, "%.2f", value);
    return number;
}

std::string quoted(const std::string& text) {
    std::string out;
    appendUtf8JsonString(out, text);
    return out;
}

// The value while its files are as they were measured: a song changed since must be measured
// again, and one that is gone has nothing left to keep.
bool stillCurrent(const LoudnessRecord& record) {
    if (stampOf(record.songPath) != record.song)
        return false;
    return record.family != musicTypeMidi || stampOf(record.fontPath) == record.font;
}

} // namespace

std::optional<FileStamp> stampOf(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0)
        return std::nullopt;
    return FileStamp{static_cast<std::int64_t>(info.st_size),
                     static_cast<std::int64_t>(info.st_mtim.tv_sec) * 1000000000 +
                         info.st_mtim.tv_nsec};
}

std::string loudnessKey(const std::string& songPath, const std::string& fontPath) {
    return fontPath.empty() ? songPath : songPath + '\n' + fontPath;
}

LoudnessTable loadLoudnessCache(const std::string& path) {
    CacheReader reader;
    JsonRead read = readJsonEvents(path, reader);
    if (read != JsonRead::Read)
        return {}; // missing, or not JSON (reported and set aside already)
    if (!reader.problem.empty()) {
        setAsideDamaged(path, reader.problem + "; the loudness of every song is measured anew");
        return {};
    }
    return std::move(reader.table);
}

// Keys stand in the sorted order of every other file of the player.
bool saveLoudnessCache(const std::string& path, const LoudnessTable& table) {
    std::string text = "{\n    \"format\": 1,\n    \"songs\": [";
    text.reserve(table.size() * 320 + 64);
    bool first = true;
    for (const auto& [key, record] : table) {
        if (!isValidUtf8(record.songPath) || !isValidUtf8(record.fontPath) || !stillCurrent(record))
            continue;
        text += first ? "\n        {\n" : ",\n        {\n";
        first = false;
        const bool measured = record.result == LoudnessResult::Measured;
        appendLine(text, "family", std::to_string(record.family));
        if (record.family == musicTypeMidi) {
            appendLine(text, "font", quoted(record.fontPath));
            appendLine(text, "fontMtime", std::to_string(record.font.mtimeNs));
            appendLine(text, "fontSize", std::to_string(record.font.size));
        }
        if (measured)
            appendLine(text, "lufs", decibels(record.lufs));
        appendLine(text, "mtime", std::to_string(record.song.mtimeNs));
        appendLine(text, "path", quoted(record.songPath));
        appendLine(text, "result", quoted(resultName(record.result)));
        appendLine(text, "size", std::to_string(record.song.size), !measured);
        if (measured)
            appendLine(text, "truePeak", decibels(record.truePeakDb), true);
        text += "        }";
    }
    text += first ? "]\n}" : "\n    ]\n}";
    if (writeJsonText(path, text))
        return true;
    logErr("Failed to open %s for writing.\n", path.c_str());
    return false;
}
