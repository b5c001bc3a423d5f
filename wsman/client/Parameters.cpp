// Parameters of methods, as a machine is to take them.
#include "client/Parameters.h"

#include <quillet-wmi/ObjectPath.h>
#include <quillet-wmi/Text.h>

#include <wbemidl.h>

#include <set>

namespace quillet::wsman {

namespace {

void WriteNamed(XmlWriter& xml, const wmi::Instance& from, std::size_t index, const Namespace& space,
                const PathTexts& paths) {
    const std::optional<wmi::Value> changed = paths.Changed(from.values[index]);
    WriteValue(xml, "p", from.definition->properties[index], changed ? *changed : from.values[index], space,
               DateTimeForm::Cim);
}

} // namespace

std::optional<wmi::Scalar> PathTexts::Changed(const wmi::Scalar& scalar) const {
    constexpr std::wstring_view kBegin = L"\\\\";
    const auto* text = std::get_if<std::wstring>(&scalar);
    if (text == nullptr || !text->starts_with(kBegin)) {
        return std::nullopt;
    }
    const auto path = wmi::ObjectPath::Parse(*text);
    if (!path || !wmi::SameName(path->namespacePath, m_namespaceName) || !m_isMeant(path->server)) {
        return std::nullopt;
    }
    return std::wstring(kBegin).append(m_server).append(*text, kBegin.size() + path->server.size());
}

std::optional<wmi::Value> PathTexts::Changed(const wmi::Value& value) const {
    if (const wmi::Scalar* scalar = value.AsScalar()) {
        auto changed = Changed(*scalar);
        return changed ? std::optional(wmi::Value(std::move(*changed))) : std::nullopt;
    }
    const wmi::Value::Array* array = value.AsArray();
    std::optional<wmi::Value::Array> copy;
    for (std::size_t i = 0; array != nullptr && i < array->size(); ++i) {
        const std::optional<wmi::Scalar>& element = (*array)[i];
        if (auto changed = element ? Changed(*element) : std::nullopt) {
            if (!copy) {
                copy = *array;
            }
            (*copy)[i] = std::move(changed);
        }
    }
    return copy ? std::optional(wmi::Value(std::move(*copy))) : std::nullopt;
}

void PathTexts::Change(wmi::Instance& parameters) const {
    for (wmi::Value& value : parameters.values) {
        if (auto changed = Changed(value)) {
            value = std::move(*changed);
        }
    }
}

std::vector<std::string> ByteArraysOf(const std::vector<wmi::Property>& properties) {
    std::vector<std::string> names;
    for (const wmi::Property& property : properties) {
        if (property.type == (CIM_UINT8 | CIM_FLAG_ARRAY)) {
            names.push_back(wmi::ToUtf8(property.name));
        }
    }
    return names;
}

std::string InputBody(const std::string& method, const std::string& resource, const wmi::Filled* in,
                      const Namespace& space, const PathTexts& paths) {
    XmlWriter xml;
    xml.Open("p:" + method + "_INPUT").Declare("p", resource);
    if (in != nullptr && in->values.definition != nullptr) {
        std::set<std::size_t> written;
        for (const wmi::NamedValue& put : in->puts) {
            const auto index = in->values.definition->PropertyIndex(put.name);
            if (index && written.insert(*index).second) {
                WriteNamed(xml, in->values, *index, space, paths);
            }
        }
        for (std::size_t i = 0; i < in->values.values.size(); ++i) {
            if (written.count(i) == 0 && !in->values.values[i].IsNull()) {
                WriteNamed(xml, in->values, i, space, paths);
            }
        }
    }
    return xml.Close().Take();
}

} // namespace quillet::wsman
