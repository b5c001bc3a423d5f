// Values for programs and in sentences.
#include "texts/Field.h"

namespace quilletctl {

Json AsJson(const std::vector<Field>& fields) {
    Json json = Json::object();
    for (const Field& field : fields) {
        const std::size_t dot = field.key.find('.');
        Json& object = dot == std::string::npos ? json : json[field.key.substr(0, dot)];
        const std::string key = dot == std::string::npos ? field.key : field.key.substr(dot + 1);
        object[key] = field.value;
        if (field.value.is_number() && !field.text.empty()) {
            object[key + "Text"] = field.text;
        }
    }
    return json;
}

std::string TextOf(const Json& value) {
    if (value.is_null()) {
        return "not available";
    }
    if (value.is_boolean()) {
        return value.get<bool>() ? "on" : "off";
    }
    if (value.is_array()) {
        std::string list;
        for (const Json& each : value) {
            list += (list.empty() ? "" : ", ") + TextOf(each);
        }
        return list;
    }
    // A text for people has none of JSON's escapes.
    return value.is_string() ? '"' + value.get<std::string>() + '"' : value.dump();
}

std::string TextOf(const Field& field) {
    return field.text.empty() ? TextOf(field.value) : field.text;
}

std::string WithValues(const std::string& asked, const std::vector<Field>& fields) {
    std::string text = asked;
    const char* separator = ": ";
    for (const Field& field : fields) {
        if (!field.value.is_null()) {
            text += separator + field.label + " = " + TextOf(field);
            separator = ", ";
        }
    }
    return text;
}

} // namespace quilletctl
