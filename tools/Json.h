#pragma once

// JSON as verbs print it: one object, whose first entry is the verdict.

#include "tools/NumberText.h"
#include "tools/Quote.h"

#include <cmath>
#include <concepts>
#include <optional>
#include <string>
#include <vector>

// An object under construction: JsonObject().Add("verdict", "good").Add("bytes", 20).Text(). Texts may hold
// any bytes; keys are plain. Numbers that are not finite become null.
class JsonObject {
public:
    template <class Value>
    JsonObject & Add(char const * key, Value const & value) {
        entries += (entries.empty() ? "\"" : ", \"") + std::string(key) + "\": " + textOf(value);
        return *this;
    }

    std::string Text() const { return '{' + entries + '}'; }

private:
    static std::string textOf(JsonObject const & object) { return object.Text(); }

    static std::string textOf(std::string_view text) { return QuoteJson(text); }

    static std::string textOf(std::same_as<bool> auto value) { return value ? "true" : "false"; }

    template <std::integral Number>

    requires(!std::same_as<Number, bool>) static std::string textOf(Number value) {
        return std::to_string(value);
    }

    static std::string textOf(std::floating_point auto value) {
        return std::isfinite(value) ? FloatText(value) : "null";
    }

    template <class Value>
    static std::string textOf(std::optional<Value> const & value) {
        return value ? textOf(*value) : "null";
    }

    template <class Value>
    static std::string textOf(std::vector<Value> const & values) {
        std::string list;
        for (Value const & value : values)
            list += (list.empty() ? "" : ", ") + textOf(value);
        return '[' + list + ']';
    }

    std::string entries;
};
