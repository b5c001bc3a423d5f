// Comparing, and telling what did not take.
#include "changes/Verification.h"

#include <algorithm>

namespace quilletctl {

namespace {

/// The field of a key; null where there is none.
const Field* Find(const std::vector<Field>& fields, const std::string& key) {
    const auto found =
        std::find_if(fields.begin(), fields.end(), [&key](const Field& each) { return each.key == key; });
    return found == fields.end() ? nullptr : &*found;
}

} // namespace

void Verification::Compare(const std::vector<Field>& wanted, const std::vector<Field>& found) {
    for (const Field& field : wanted) {
        const Field* now = Find(found, field.key);
        const Json value = now == nullptr ? Json() : now->value;
        if (!field.isSecret && !field.value.is_null() && value != field.value) {
            Add(field.key, field.value, value,
                field.label + " is " + TextOf(value) + ", not " + TextOf(field.value));
        }
    }
}

void Verification::CompareSecret(const std::vector<Field>& fields, const char* key,
                                 const quillet::Secret& wanted, const quillet::Secret& found) {
    if (const Field* field = Find(fields, key); field != nullptr && !(found == wanted)) {
        Add(key, field->value, found.IsEmpty() ? Json() : Json("***"),
            field->label + (found.IsEmpty()    ? " is missing"
                            : wanted.IsEmpty() ? " is still there"
                                               : " is another than the one that was given"));
    }
}

void Verification::Add(const std::string& what, Json wanted, Json found, std::string sentence) {
    m_differences.push_back({what, std::move(wanted), std::move(found), std::move(sentence)});
}

std::optional<bool> Verification::Took() const noexcept {
    return !m_differences.empty() ? std::optional(false) : m_told ? std::optional(true) : std::nullopt;
}

void Verification::AddTo(Json& answer) const {
    const std::optional<bool> took = Took();
    answer["took"] = took ? Json(*took) : Json();
    answer["differences"] = Differences();
}

Json Verification::Differences() const {
    Json differences = Json::array();
    for (const Difference& each : m_differences) {
        differences.push_back(Json{{"what", each.what}, {"wanted", each.wanted}, {"found", each.found}});
    }
    return differences;
}

std::string Verification::Text(const std::string& done) const {
    if (m_differences.empty()) {
        return m_told     ? done
               : m_unread ? "sent, but whether it took could not be read"
                          : "sent; the adapter does not tell whether it took";
    }
    std::string text;
    for (const Difference& each : m_differences) {
        text += (text.empty() ? "did not take: " : "; ") + each.sentence;
    }
    return text;
}

void Verification::End(const std::string& asked) const {
    if (!m_differences.empty()) {
        throw NotTaken(asked, "the provider accepted it, but not all of it took");
    }
    if (m_unread) {
        throw Refusal(*m_unread);
    }
}

} // namespace quilletctl
