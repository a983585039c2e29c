#pragma once
#include <nlohmann/json.hpp>

// A reader of a file's parse events (readJsonEvents) that takes every value that is not a string,
// an object or a list alike: each comes to scalar() as a small document of its own.
class ScalarJsonEvents : public nlohmann::json_sax<nlohmann::json> {
  public:
    bool null() override { return scalar(nlohmann::json()); }
    bool boolean(bool value) override { return scalar(nlohmann::json(value)); }
    bool number_integer(number_integer_t value) override { return scalar(nlohmann::json(value)); }
    bool number_unsigned(number_unsigned_t value) override { return scalar(nlohmann::json(value)); }
    bool number_float(number_float_t value, const string_t&) override {
        return scalar(nlohmann::json(value));
    }
    bool binary(binary_t&) override { return scalar(nlohmann::json()); }

  protected:
    virtual bool scalar(const nlohmann::json& value) = 0;
};
