// IWbemContext.
#include "com/Context.h"

#include "connection/Session.h"

#include <quillet-wmi/OwnCounts.h>
#include <quillet-wmi/SharedMutex.h>
#include <quillet-wmi/Variant.h>

#include <map>
#include <mutex>
#include <shared_mutex>

namespace quillet::wmi {

namespace {

/// Owns what a VARIANT holds.
class OwnedVariant {
  public:
    OwnedVariant() noexcept = default;
    OwnedVariant(OwnedVariant&& other) noexcept : m_variant(other.m_variant) {
        VariantInit(&other.m_variant);
    }
    OwnedVariant& operator=(OwnedVariant&& other) noexcept {
        std::swap(m_variant, other.m_variant);
        return *this;
    }
    ~OwnedVariant() { VariantClear(&m_variant); }
    VARIANT* Get() noexcept { return &m_variant; }
    /// To be copied from, which OLE declares as if it might change.
    VARIANT* Get() const noexcept { return const_cast<VARIANT*>(&m_variant); }

  private:
    VARIANT m_variant{};
};

using Values = std::map<std::wstring, OwnedVariant, NameLess>;

class Context final : public ComObject<IWbemContext, IID_IWbemContext> {
  public:
    explicit Context(std::shared_ptr<Host> host) : m_host(std::move(host)) {}

    HRESULT STDMETHODCALLTYPE Clone(IWbemContext** copy) override {
        if (!ClearOut(copy)) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        *copy = Copy(m_host.Shared());
        return *copy != nullptr ? HRESULT(S_OK) : HRESULT(WBEM_E_OUT_OF_MEMORY);
    }

    HRESULT STDMETHODCALLTYPE GetNames(LONG flags, SAFEARRAY** names) override {
        if (names == nullptr || flags != 0) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        const std::lock_guard lock(m_mutex);
        *names = MakeNameArray(Names());
        return *names != nullptr ? HRESULT(S_OK) : HRESULT(WBEM_E_OUT_OF_MEMORY);
    }

    HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG flags) override {
        if (flags != 0) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        const std::lock_guard lock(m_mutex);
        m_enumerated = Names();
        m_position = 0;
        m_enumerating = true;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE Next(LONG flags, BSTR* name, VARIANT* value) override {
        if (flags != 0) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        const std::lock_guard lock(m_mutex);
        if (!m_enumerating) {
            return HRESULT(WBEM_E_UNEXPECTED);
        }
        // A value deleted since the enumeration began is passed over; one that is not handed out comes again.
        auto position = m_position;
        auto found = m_values.end();
        while (position < m_enumerated.size() && found == m_values.end()) {
            found = m_values.find(m_enumerated[position++]);
        }
        if (found == m_values.end()) {
            return WBEM_S_NO_MORE_DATA;
        }
        if (value != nullptr) {
            VariantInit(value);
            if (FAILED(VariantCopy(value, found->second.Get()))) {
                return HRESULT(WBEM_E_OUT_OF_MEMORY);
            }
        }
        if (name != nullptr && (*name = MakeBstr(found->first)) == nullptr) {
            if (value != nullptr) {
                VariantClear(value);
            }
            return HRESULT(WBEM_E_OUT_OF_MEMORY);
        }
        m_position = position;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE EndEnumeration() override {
        const std::lock_guard lock(m_mutex);
        m_enumerating = false;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE SetValue(LPCWSTR name, LONG flags, VARIANT* value) override {
        if (name == nullptr || value == nullptr || flags != 0) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        ObservedCall seen;
        seen.operation = Operation::SetContextValue;
        seen.target = name;
        const LocalCall call(m_host.Shared()->Observer(), seen);
        if (call.Stopped()) {
            return call.Done(*call.Stopped());
        }
        OwnedVariant copy;
        if (FAILED(VariantCopy(copy.Get(), value))) {
            return call.Done(HRESULT(WBEM_E_OUT_OF_MEMORY));
        }
        {
            const std::lock_guard lock(m_mutex);
            m_values[name] = std::move(copy);
        }
        return call.Done(S_OK, {NamedValue{name, V_VT(value), 0, AnyFromVariant(*value)}});
    }

    HRESULT STDMETHODCALLTYPE GetValue(LPCWSTR name, LONG flags, VARIANT* value) override {
        if (name == nullptr || value == nullptr || flags != 0) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        VariantInit(value);
        const std::lock_guard lock(m_mutex);
        const auto found = m_values.find(std::wstring_view(name));
        if (found == m_values.end()) {
            return HRESULT(WBEM_E_NOT_FOUND);
        }
        return SUCCEEDED(VariantCopy(value, found->second.Get())) ? HRESULT(S_OK)
                                                                  : HRESULT(WBEM_E_OUT_OF_MEMORY);
    }

    HRESULT STDMETHODCALLTYPE DeleteValue(LPCWSTR name, LONG flags) override {
        if (name == nullptr || flags != 0) {
            return HRESULT(WBEM_E_INVALID_PARAMETER);
        }
        const std::lock_guard lock(m_mutex);
        const auto found = m_values.find(std::wstring_view(name));
        if (found == m_values.end()) {
            return HRESULT(WBEM_E_NOT_FOUND);
        }
        m_values.erase(found);
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE DeleteAll() override {
        const std::lock_guard lock(m_mutex);
        m_values.clear();
        return S_OK;
    }

  protected:
    // On a real machine a context is marshalled by value: what one thread sets in its own, no other sees.
    IUnknown* CopyForRetrieval() override { return static_cast<IWbemContext*>(Copy(m_host.Taken())); }

  private:
    Context* Copy(std::shared_ptr<Host> host) {
        ComOwner<Context> copy(new Context(std::move(host)));
        // Every operation of every thread begins with a copy of one context.
        const std::shared_lock lock(m_mutex);
        for (const auto& [name, value] : m_values) {
            if (FAILED(VariantCopy(copy->m_values[name].Get(), value.Get()))) {
                return nullptr;
            }
        }
        return copy.release();
    }

    std::vector<std::wstring> Names() const {
        std::vector<std::wstring> names;
        for (const auto& [name, value] : m_values) {
            names.push_back(name);
        }
        return names;
    }

    const CountedByThreads<Host> m_host;
    SharedMutex m_mutex;
    Values m_values;
    std::vector<std::wstring> m_enumerated;
    std::size_t m_position = 0;
    bool m_enumerating = false;
};

} // namespace

std::vector<NamedValue> ContextValues(IWbemContext* context) {
    std::vector<NamedValue> values;
    IWbemContext* copied = nullptr;
    // An enumeration belongs to its context; a copy leaves one that the client may have begun alone.
    if (context == nullptr || FAILED(context->Clone(&copied)) || copied == nullptr) {
        return values;
    }
    const ComOwner<IWbemContext> copy(copied);
    if (FAILED(copy->BeginEnumeration(0))) {
        return values;
    }
    BSTR name = nullptr;
    OwnedVariant value;
    while (copy->Next(0, &name, value.Get()) == S_OK) {
        values.push_back({std::wstring(BstrText(name)), V_VT(value.Get()), 0, AnyFromVariant(*value.Get())});
        SysFreeString(name);
        name = nullptr;
        VariantClear(value.Get());
    }
    copy->EndEnumeration();
    return values;
}

IWbemContext* MakeContext(std::shared_ptr<Host> host) {
    return new Context(std::move(host));
}

} // namespace quillet::wmi
