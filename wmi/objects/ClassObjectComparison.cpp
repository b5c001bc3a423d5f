// Whether two objects say the same.
#include "objects/ClassObject.h"

#include <algorithm>

namespace quillet::wmi {

namespace {

bool SameText(std::wstring_view left, std::wstring_view right, bool ignoreCase) {
    return ignoreCase ? SameName(left, right) : left == right;
}

bool SameScalar(const std::optional<Scalar>& left, const std::optional<Scalar>& right, bool ignoreCase) {
    if (left && right) {
        const auto* leftText = std::get_if<std::wstring>(&*left);
        const auto* rightText = std::get_if<std::wstring>(&*right);
        if (leftText != nullptr && rightText != nullptr) {
            return SameText(*leftText, *rightText, ignoreCase);
        }
    }
    return left == right;
}

bool SameValue(const Value& left, const Value& right, bool ignoreCase) {
    if (const auto* array = left.AsArray()) {
        const auto* other = right.AsArray();
        return other != nullptr && std::equal(array->begin(), array->end(), other->begin(), other->end(),
                                              [ignoreCase](const auto& one, const auto& two) {
                                                  return SameScalar(one, two, ignoreCase);
                                              });
    }
    const auto* scalar = left.AsScalar();
    const auto* other = right.AsScalar();
    if (scalar == nullptr || other == nullptr) {
        return left == right;
    }
    return SameScalar(*scalar, *other, ignoreCase);
}

} // namespace

HRESULT STDMETHODCALLTYPE ClassObject::CompareTo(LONG flags, IWbemClassObject* compared) {
    const auto other = Behind(compared);
    if (!other) {
        return HRESULT(WBEM_E_INVALID_PARAMETER);
    }
    const bool ignoreCase = (flags & WBEM_FLAG_IGNORE_CASE) != 0;
    const auto mine = Values();
    const auto theirs = other->Values();
    if (m_isInstance != other->m_isInstance) {
        return WBEM_S_DIFFERENT;
    }
    if ((flags & WBEM_FLAG_IGNORE_CLASS) == 0 && !SameName(m_definition->name, other->m_definition->name)) {
        return WBEM_S_DIFFERENT;
    }
    if ((flags & WBEM_FLAG_IGNORE_DEFAULT_VALUES) != 0 && !m_isInstance) {
        return WBEM_S_SAME;
    }
    if (mine.values.size() != theirs.values.size()) {
        return WBEM_S_DIFFERENT;
    }
    for (std::size_t index = 0; index < mine.values.size(); ++index) {
        const auto* value = theirs.Find(m_definition->properties[index].name);
        if (value == nullptr || !SameValue(mine.values[index], *value, ignoreCase)) {
            return WBEM_S_DIFFERENT;
        }
    }
    return WBEM_S_SAME;
}

} // namespace quillet::wmi
