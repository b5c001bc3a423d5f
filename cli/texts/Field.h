// One value of an answer, by its names.
#pragma once

#include "texts/Json.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace quilletctl {

/// A value by the key that it has in answers for programs, and by what people call it. A null value is one
/// that there is not, or that nobody asked for.
struct Field {
    std::string key; ///< "outgoing.key" is the key of an object within the answer
    std::string label;
    Json value;
    bool isSecret = false; ///< the value only tells whether there is one
    std::string text{};    ///< what it means to people; empty: the value says it
};

/// The values as an object; a number that means something has its text beside it, as "modeText" beside
/// "mode".
Json AsJson(const std::vector<Field>& fields);
/// A value as sentences have it: `on`, `7`, `1, 2`, `"text"`, `not available`.
std::string TextOf(const Json& value);
/// The value of a field as people read it.
std::string TextOf(const Field& field);

/// What is asked for with its values: "set the keys of A: Encryption = on". Null values are left out.
std::string WithValues(const std::string& asked, const std::vector<Field>& fields);

} // namespace quilletctl
