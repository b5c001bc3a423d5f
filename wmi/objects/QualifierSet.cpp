// IWbemQualifierSet.
#include "objects/QualifierSet.h"

#include <quillet-wmi/Variant.h>

#include <algorithm>
#include <mutex>

namespace quillet::wmi {

namespace {

constexpr LONG kPassesOnToInstances = WBEM_FLAVOR_FLAG_PROPAGATE_TO_INSTANCE;
constexpr LONG kOriginMask = WBEM_FLAVOR_MASK_ORIGIN;

class QualifierSet final : public ComObject<IWbemQualifierSet, IID_IWbemQualifierSet> {
  public:
    QualifierSet(SessionPtr session, std::vector<Qualifier> qualifiers, ClassPtr owner)
        : m_session(std::move(session)), m_qualifiers(std::move(qualifiers)), m_owner(std::move(owner)) {}

    HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, LONG* flavor) override {
        if (name == nullptr || flags != 0) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        ObservedCall seen;
        seen.operation = Operation::GetQualifier;
        seen.target = name;
        seen.definition = m_owner.get();
        const LocalCall call(m_session->observer, seen);
        if (call.Stopped()) {
            return call.Done(*call.Stopped());
        }
        const auto found =
            std::find_if(m_qualifiers.begin(), m_qualifiers.end(),
                         [name](const Qualifier& qualifier) { return SameName(qualifier.name, name); });
        if (found == m_qualifiers.end()) {
            return call.Done(HRESULT(WBEM_E_NOT_FOUND));
        }
        if (value != nullptr) {
            if (const HRESULT filled = call.Fill(found->value, found->type, value); FAILED(filled)) {
                return call.Done(filled);
            }
        }
        if (flavor != nullptr) {
            *flavor = found->flavor;
        }
        return call.Done(S_OK);
    }

    // The schema is not the client's to change.
    HRESULT STDMETHODCALLTYPE Put(LPCWSTR, VARIANT*, LONG) override { return HRESULT(WBEM_E_NOT_SUPPORTED); }
    HRESULT STDMETHODCALLTYPE Delete(LPCWSTR) override { return HRESULT(WBEM_E_NOT_SUPPORTED); }

    HRESULT STDMETHODCALLTYPE GetNames(LONG flags, SAFEARRAY** names) override {
        if (names == nullptr || !IsOrigin(flags)) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        std::vector<std::wstring> list;
        for (const auto& qualifier : m_qualifiers) {
            if (Passes(qualifier, flags)) {
                list.push_back(qualifier.name);
            }
        }
        *names = MakeNameArray(list);
        return *names != nullptr ? HRESULT(S_OK) : HRESULT(WBEM_E_OUT_OF_MEMORY);
    }

    HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG flags) override {
        if (!IsOrigin(flags)) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        const std::lock_guard lock(m_mutex);
        m_position = 0;
        m_origin = flags;
        m_enumerating = true;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE Next(LONG flags, BSTR* name, VARIANT* value, LONG* flavor) override {
        if (flags != 0) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        const std::lock_guard lock(m_mutex);
        if (!m_enumerating) {
            return HRESULT(WBEM_E_UNEXPECTED);
        }
        while (m_position < m_qualifiers.size() && !Passes(m_qualifiers[m_position], m_origin)) {
            ++m_position;
        }
        if (m_position == m_qualifiers.size()) {
            return WBEM_S_NO_MORE_DATA;
        }
        const auto& qualifier = m_qualifiers[m_position];
        if (value != nullptr) {
            if (const HRESULT filled = ToVariant(qualifier.value, qualifier.type, value); FAILED(filled)) {
                return filled;
            }
        }
        if (name != nullptr && (*name = MakeBstr(qualifier.name)) == nullptr) {
            if (value != nullptr) {
                VariantClear(value);
            }
            return HRESULT(WBEM_E_OUT_OF_MEMORY);
        }
        if (flavor != nullptr) {
            *flavor = qualifier.flavor;
        }
        ++m_position;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE EndEnumeration() override {
        const std::lock_guard lock(m_mutex);
        m_enumerating = false;
        return S_OK;
    }

  private:
    static bool IsOrigin(LONG flags) {
        return flags == 0 || flags == WBEM_FLAG_LOCAL_ONLY || flags == WBEM_FLAG_PROPAGATED_ONLY;
    }
    static bool Passes(const Qualifier& qualifier, LONG origin) {
        const bool propagated = (qualifier.flavor & kOriginMask) == WBEM_FLAVOR_ORIGIN_PROPAGATED;
        return origin == 0 || propagated == (origin == WBEM_FLAG_PROPAGATED_ONLY);
    }

    SessionPtr m_session;
    std::vector<Qualifier> m_qualifiers;
    ClassPtr m_owner;
    std::mutex m_mutex;
    std::size_t m_position = 0;
    LONG m_origin = 0;
    bool m_enumerating = false;
};

} // namespace

std::vector<Qualifier> VisibleQualifiers(const Qualifiers& qualifiers, LCID locale, QualifierView view) {
    std::vector<Qualifier> visible;
    for (const auto& qualifier : qualifiers.All()) {
        // WMI passes these two on to instances whatever their declaration says.
        const bool passesOn = (qualifier.flavor & kPassesOnToInstances) != 0 ||
                              SameName(qualifier.name, L"key") || SameName(qualifier.name, L"CIMTYPE");
        if ((qualifier.amended && !view.amended) || (view.onInstance && !passesOn)) {
            continue;
        }
        Qualifier seen = qualifier;
        if (const auto text = qualifier.localized.find(locale); text != qualifier.localized.end()) {
            seen.value = text->second;
        }
        seen.localized.clear();
        if (view.onInstance) {
            seen.flavor = (seen.flavor & ~kOriginMask) | WBEM_FLAVOR_ORIGIN_PROPAGATED;
        }
        if (qualifier.amended) {
            seen.flavor |= WBEM_FLAVOR_AMENDED;
        }
        visible.push_back(std::move(seen));
    }
    return visible;
}

IWbemQualifierSet* MakeQualifierSet(SessionPtr session, std::vector<Qualifier> qualifiers, ClassPtr owner) {
    return new QualifierSet(std::move(session), std::move(qualifiers), std::move(owner));
}

} // namespace quillet::wmi
