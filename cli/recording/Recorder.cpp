// From the provider's instances to those of a simulated machine.
#include "recording/Recorder.h"

#include "ending/Failure.h"
#include "recording/Secrets.h"
#include "texts/Text.h"

#include <quillet-wmi/Variant.h>

#include <algorithm>
#include <utility>

namespace quilletctl {

namespace {

using quillet::simulator::Machine;
using quillet::wmi::ClassDefinition;
using quillet::wmi::ClassPtr;
using quillet::wmi::Instance;
using quillet::wmi::Property;
using quillet::wmi::Value;

/// More than any machine has: a provider that goes on and on must come to an end here.
constexpr std::size_t kMostInstances = 100'000;
constexpr std::size_t kMostCharacters = std::size_t{256} << 20;

/// Of the simulator's own classes the provider has none.
constexpr std::wstring_view kOwnClasses = L"QuilletSimulator_";

class OwnedVariant {
  public:
    OwnedVariant() noexcept { VariantInit(&m_value); }
    ~OwnedVariant() { VariantClear(&m_value); }
    OwnedVariant(const OwnedVariant&) = delete;
    OwnedVariant& operator=(const OwnedVariant&) = delete;
    VARIANT* Fill() noexcept { return &m_value; }
    const VARIANT& Get() const noexcept { return m_value; }

  private:
    VARIANT m_value{};
};

std::wstring SystemText(IWbemClassObject& object, const wchar_t* name) {
    OwnedVariant value;
    const HRESULT result = object.Get(name, 0, value.Fill(), nullptr, nullptr);
    return SUCCEEDED(result) && V_VT(&value.Get()) == VT_BSTR
               ? std::wstring(quillet::wmi::BstrText(V_BSTR(&value.Get())))
               : std::wstring();
}

/// How much room a value takes in a file, roughly.
std::size_t SizeOf(const Value& value) {
    constexpr std::size_t kOfElement = 5;
    const auto ofScalar = [](const quillet::wmi::Scalar& scalar) {
        const auto* text = std::get_if<std::wstring>(&scalar);
        return kOfElement + (text == nullptr ? 0 : text->size());
    };
    if (const auto* scalar = value.AsScalar()) {
        return ofScalar(*scalar);
    }
    std::size_t size = kOfElement * value.Size();
    if (const auto* elements = value.AsArray()) {
        for (const auto& element : *elements) {
            size += element ? ofScalar(*element) : 0;
        }
    }
    return size;
}

bool IsAbsence(HRESULT result) {
    return result == HRESULT(WBEM_E_INVALID_CLASS) || result == HRESULT(WBEM_E_NOT_FOUND);
}

class Recorder {
  public:
    explicit Recorder(ProviderNamespace& provider) : m_provider(provider), m_machine(Machine::Empty()) {
        for (const auto& instance : m_machine->Store().AllInstances()) {
            m_machine->Store().DeleteInstance(
                *quillet::wmi::ObjectPath::Parse(quillet::wmi::RelativePath(*instance)));
        }
    }

    Record Run() {
        for (const ClassPtr& definition : m_machine->Store().Classes()) {
            if (definition->superclass.empty() && !definition->name.starts_with(kOwnClasses)) {
                ReadFamily(*definition);
            }
        }
        DescribeMachine();
        for (const auto& instance : m_machine->Store().AllInstances()) {
            if (!instance->definition->name.starts_with(kOwnClasses)) {
                ++m_record.found[instance->definition->name];
            }
        }
        if (m_record.found.empty()) {
            throw NotTaken("record the machine", "its provider tells nothing that the simulator knows");
        }
        m_record.mof = m_machine->Save();
        CheckPlayable();
        return std::move(m_record);
    }

  private:
    /// What was stored piece by piece must also hold as a text.
    void CheckPlayable() const {
        try {
            Machine::FromText(m_record.mof, "record");
        } catch (const quillet::simulator::MofError& mistake) {
            throw NotTaken("record the machine", mistake.what());
        }
    }

    /// A class with all below it, in the provider's order. Where that fails, each class by itself: one that
    /// cannot be read must not hide the others.
    void ReadFamily(const ClassDefinition& root) {
        const HRESULT result = Read(root, WBEM_FLAG_DEEP);
        if (SUCCEEDED(result)) {
            return;
        }
        bool hasSubclasses = false;
        for (const ClassPtr& each : m_machine->Store().Classes()) {
            if (quillet::wmi::SameName(each->superclass, root.name)) {
                hasSubclasses = true;
                ReadFamily(*each);
            }
        }
        if (hasSubclasses) {
            NoteFailure(root, root.qualifiers.Has(L"abstract") ? S_OK : Read(root, WBEM_FLAG_SHALLOW));
        } else {
            NoteFailure(root, result);
        }
    }

    HRESULT Read(const ClassDefinition& root, LONG flags) {
        return m_provider.ForEachInstance(root.name, flags,
                                          [&](IWbemClassObject& object) { Take(root, object); });
    }

    void NoteFailure(const ClassDefinition& definition, HRESULT result) {
        if (IsAbsence(result)) {
            m_record.absent.push_back(definition.name);
        } else if (FAILED(result)) {
            NoteOf(definition.name).code = result;
        }
    }

    void Take(const ClassDefinition& root, IWbemClassObject& object) {
        const ClassPtr definition = m_machine->Store().FindClass(SystemText(object, L"__CLASS"));
        // Whatever a provider says it is: an instance of another family would steer the simulator.
        if (!definition || !definition->IsA(root.name)) {
            NoteLoss(root.name, L"the instance is of a class that is not known");
            return;
        }
        if (m_server.empty()) {
            m_server = SystemText(object, L"__SERVER");
        }
        Instance instance(definition);
        for (std::size_t i = 0; i < instance.values.size(); ++i) {
            instance.values[i] = ReadValue(object, *definition, definition->properties[i]);
            m_characters += SizeOf(instance.values[i]);
        }
        m_record.secrets += HideSecrets(instance);
        if (++m_instances > kMostInstances || m_characters > kMostCharacters) {
            throw NotTaken("record the machine", "its provider does not come to an end");
        }
        std::wstring reason;
        if (FAILED(m_machine->Store().PutInstance(std::move(instance),
                                                  quillet::simulator::WriteMode::CreateOrUpdate, &reason))) {
            NoteLoss(definition->name, reason);
        }
    }

    /// Null where there is none, or where it is not what the schema says.
    Value ReadValue(IWbemClassObject& object, const ClassDefinition& definition, const Property& property) {
        OwnedVariant variant;
        Value value;
        if (FAILED(object.Get(property.name.c_str(), 0, variant.Fill(), nullptr, nullptr)) ||
            V_VT(&variant.Get()) == VT_EMPTY) {
            return value; // a provider of another version does not have it
        }
        if (FAILED(quillet::wmi::FromVariant(variant.Get(), property.type, value))) {
            NoteLoss(definition.name, L"the value of property \"" + property.name + L"\" is of another type");
        }
        return value;
    }

    Unrecorded& NoteOf(const std::wstring& className) {
        const auto found = std::ranges::find(m_record.unrecorded, className, &Unrecorded::className);
        if (found != m_record.unrecorded.end()) {
            return *found;
        }
        m_record.unrecorded.push_back({className});
        return m_record.unrecorded.back();
    }

    void NoteLoss(const std::wstring& className, const std::wstring& reason) {
        Unrecorded& note = NoteOf(className);
        if (++note.count == 1) {
            note.reason = reason;
        }
    }

    /// Object paths name the computer, and are to be the same when the record is played.
    void DescribeMachine() {
        const ClassPtr definition = m_machine->Store().FindClass(L"QuilletSimulator_Machine");
        constexpr std::size_t kLongestName = 255;
        if (!definition || m_server.empty() || m_server.size() > kLongestName) {
            return;
        }
        Instance description(definition);
        description.Set(L"Name", Value::Text(L"recorded"));
        description.Set(L"ServerName", Value::Text(m_server));
        m_machine->Store().PutInstance(std::move(description));
    }

    ProviderNamespace& m_provider;
    std::shared_ptr<Machine> m_machine; ///< what the instances are put into, which checks them
    Record m_record;
    std::wstring m_server;
    std::size_t m_instances = 0;
    std::size_t m_characters = 0;
};

} // namespace

Record RecordMachine(ProviderNamespace& provider) {
    return Recorder(provider).Run();
}

} // namespace quilletctl
