// IWbemClassObject: classes, instances and the parameter objects of methods.
#pragma once

#include "com/ComObject.h"
#include "connection/Session.h"

#include <mutex>

namespace quillet::wmi {

/// Names one of this layer's own class objects, whose inside the other objects may look at.
inline constexpr IID IID_OwnClassObject = {
    0x6f0d9c1e, 0x52a7, 0x4b0e, {0x9d, 0x34, 0x1b, 0x8e, 0x70, 0xc5, 0x2a, 0x63}};

class ClassObject final : public ComObject<IWbemClassObject, IID_IWbemClassObject> {
  public:
    /// @param amended the caller asked for amended qualifiers
    ClassObject(SessionPtr session, Object object, bool amended);

    /// The object of this layer behind an interface; null when it is somebody else's.
    static ComOwner<ClassObject> Behind(IWbemClassObject* object);

    bool IsInstance() const noexcept { return m_isInstance; }
    /// The values as they stand now.
    Instance Values() const;
    /// What was put, in order.
    std::vector<NamedValue> Puts() const;
    /// Forgets the puts: the provider has them now.
    void ForgetPuts();
    /// The object's path; nothing when it has none (a parameter object, an instance without its keys).
    std::optional<std::wstring> Path() const;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;

    HRESULT STDMETHODCALLTYPE GetQualifierSet(IWbemQualifierSet** set) override;
    HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type,
                                  LONG* flavor) override;
    HRESULT STDMETHODCALLTYPE Put(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE type) override;
    HRESULT STDMETHODCALLTYPE Delete(LPCWSTR name) override;
    HRESULT STDMETHODCALLTYPE GetNames(LPCWSTR qualifier, LONG flags, VARIANT* qualifierValue,
                                       SAFEARRAY** names) override;
    HRESULT STDMETHODCALLTYPE BeginEnumeration(LONG flags) override;
    HRESULT STDMETHODCALLTYPE Next(LONG flags, BSTR* name, VARIANT* value, CIMTYPE* type,
                                   LONG* flavor) override;
    HRESULT STDMETHODCALLTYPE EndEnumeration() override;
    HRESULT STDMETHODCALLTYPE GetPropertyQualifierSet(LPCWSTR property, IWbemQualifierSet** set) override;
    HRESULT STDMETHODCALLTYPE Clone(IWbemClassObject** copy) override;
    HRESULT STDMETHODCALLTYPE GetObjectText(LONG flags, BSTR* text) override;
    HRESULT STDMETHODCALLTYPE SpawnDerivedClass(LONG flags, IWbemClassObject** newClass) override;
    HRESULT STDMETHODCALLTYPE SpawnInstance(LONG flags, IWbemClassObject** newInstance) override;
    HRESULT STDMETHODCALLTYPE CompareTo(LONG flags, IWbemClassObject* other) override;
    HRESULT STDMETHODCALLTYPE GetPropertyOrigin(LPCWSTR name, BSTR* className) override;
    HRESULT STDMETHODCALLTYPE InheritsFrom(LPCWSTR ancestor) override;
    HRESULT STDMETHODCALLTYPE GetMethod(LPCWSTR name, LONG flags, IWbemClassObject** inSignature,
                                        IWbemClassObject** outSignature) override;
    HRESULT STDMETHODCALLTYPE PutMethod(LPCWSTR name, LONG flags, IWbemClassObject* inSignature,
                                        IWbemClassObject* outSignature) override;
    HRESULT STDMETHODCALLTYPE DeleteMethod(LPCWSTR name) override;
    HRESULT STDMETHODCALLTYPE BeginMethodEnumeration(LONG flags) override;
    HRESULT STDMETHODCALLTYPE NextMethod(LONG flags, BSTR* name, IWbemClassObject** inSignature,
                                         IWbemClassObject** outSignature) override;
    HRESULT STDMETHODCALLTYPE EndMethodEnumeration() override;
    HRESULT STDMETHODCALLTYPE GetMethodQualifierSet(LPCWSTR method, IWbemQualifierSet** set) override;
    HRESULT STDMETHODCALLTYPE GetMethodOrigin(LPCWSTR method, BSTR* className) override;

  protected:
    // Objects are marshalled by value: each thread that retrieves one has a copy of its own.
    IUnknown* CopyForRetrieval() override;

  private:
    struct SystemProperty {
        CIMTYPE type = CIM_STRING;
        Value value;
    };

    ClassObject* Copy() const;
    /// Whether the object belongs to the namespace; parameter objects and their classes do not.
    bool IsParameters() const noexcept;
    std::optional<SystemProperty> System(std::wstring_view name) const;
    std::optional<std::wstring> RelativePath() const;
    std::optional<std::wstring> FullPath() const;
    /// "__PATH" of the shared values. It is kept, and goes the short way: nearly every operation asks for it.
    HRESULT ReadPath(VARIANT* value, CIMTYPE* type, LONG* flavor) const;
    LONG FlavorOf(std::size_t index) const;
    /// Reads a property under the lock; the VARIANT is filled as the call says, if there is one.
    HRESULT Read(std::wstring_view name, const LocalCall* call, VARIANT* value, CIMTYPE* type,
                 LONG* flavor) const;
    bool Passes(std::size_t index, LONG flags) const;
    std::vector<std::wstring> Names(LONG flags) const;
    ObservedCall Seen(Operation operation, std::wstring_view target) const;
    std::vector<Qualifier> Visible(const Qualifiers& qualifiers) const;
    HRESULT HandOut(const Method& method, IWbemClassObject** inSignature, IWbemClassObject** outSignature);

    const SessionPtr m_session;
    const ClassPtr m_definition;
    const bool m_isInstance;
    const bool m_amended;

    mutable std::mutex m_mutex;
    InstancePtr m_shared;            ///< the values as the connection gave them, until the first change
    std::unique_ptr<Instance> m_own; ///< the values with the client's changes
    std::vector<NamedValue> m_puts;
    mutable std::optional<std::wstring> m_path; ///< of the shared values, once it was asked for
    const Instance& Data() const { return m_own ? *m_own : *m_shared; }
    Instance& Writable();

    std::vector<std::wstring> m_enumerated;
    std::size_t m_position = 0;
    bool m_enumerating = false;
    std::size_t m_methodPosition = 0;
    LONG m_methodOrigin = 0;
    bool m_enumeratingMethods = false;
};

} // namespace quillet::wmi
