// A simulated machine as a connection.
#include "calls/MachineConnection.h"

#include "calls/ProviderCall.h"
#include "machine/Dispatcher.h"

#include <limits>

namespace quillet::simulator {

namespace {

/// Of settings, a context may ask for subsets: bits above the low byte, which chooses properties. Settings of
/// no such subset are not told, as by a provider that knows partial retrieval.
void KeepSubset(const CallContext& context, std::vector<Object>& found) {
    constexpr std::int64_t kLowByte = 0xFF;
    const auto* asked = FindNamed(context.values, L"Zorel_PartialData");
    const auto* scalar = asked != nullptr ? asked->value.AsScalar() : nullptr;
    const auto* selector = scalar != nullptr ? std::get_if<std::int64_t>(scalar) : nullptr;
    if (selector == nullptr || *selector <= kLowByte) {
        return;
    }
    std::erase_if(found, [subset = *selector & ~kLowByte](const Object& object) {
        return object.instance != nullptr && object.definition->IsA(L"Zorel_Setting") &&
               (object.instance->Number(L"PartialDataMask") & subset) == 0;
    });
}

/// An answer, each step of which is a call of its own.
class Answer final : public ObjectStream {
  public:
    Answer(Machine& machine, std::wstring target, std::unique_ptr<ObjectStream> objects, HRESULT status)
        : m_machine(machine), m_target(std::move(target)), m_objects(std::move(objects)), m_status(status) {}

    HRESULT Next(LONG timeout, std::span<Object> objects, ULONG& returned) override {
        ProviderCall call(m_machine, Operation::Next, m_target);
        if (timeout < kInfiniteTimeout || objects.empty()) {
            return call.Done(HRESULT(WBEM_E_INVALID_PARAMETER));
        }
        if (const HRESULT begun = call.BeginWithin(timeout, m_owed); begun != S_OK) {
            return call.Done(begun);
        }
        if (FAILED(m_status)) {
            return call.Done(m_status);
        }
        if (call.Has(Effect::EndOfData)) {
            m_objects->Skip(timeout, std::numeric_limits<ULONG>::max());
        }
        const HRESULT result = m_objects->Next(timeout, objects, returned);
        if (call.Has(Effect::NullObject)) {
            std::fill_n(objects.begin(), returned, Object());
        }
        return call.Done(result);
    }

    HRESULT Skip(LONG timeout, ULONG count) override {
        return FAILED(m_status) ? m_status : m_objects->Skip(timeout, count);
    }
    HRESULT Reset() override { return m_objects->Reset(); }
    std::unique_ptr<ObjectStream> Clone() const override {
        return std::make_unique<Answer>(m_machine, m_target, m_objects->Clone(), m_status);
    }

  private:
    Machine& m_machine;
    const std::wstring m_target; ///< the class or the query
    const std::unique_ptr<ObjectStream> m_objects;
    const HRESULT m_status; ///< a failure that the first Next reports: the call itself returned at once
    unsigned m_owed = 0;    ///< milliseconds that a delayed answer still takes
};

} // namespace

Outcome MachineConnection::OpenNamespace(const CallContext& context, std::wstring_view path,
                                         std::shared_ptr<Connection>& opened) {
    ProviderCall call(*m_machine, Operation::OpenNamespace, path, context);
    if (!call.Begin()) {
        return call.NotBegun();
    }
    if (!NamesNamespace(path, NamespaceName())) {
        return call.End(HRESULT(WBEM_E_INVALID_NAMESPACE));
    }
    if (!call.Has(Effect::NullObject)) {
        opened = std::make_shared<MachineConnection>(m_machine);
    }
    return call.End(S_OK);
}

Outcome MachineConnection::GetObject(const CallContext& context, std::wstring_view path, Object& found) {
    ProviderCall call(*m_machine, Operation::GetObject, path, context);
    if (!call.Begin()) {
        return call.NotBegun();
    }
    // An empty path asks for an empty class to fill, and the schema is not the client's to change.
    if (path.empty()) {
        return call.End(HRESULT(WBEM_E_NOT_SUPPORTED));
    }
    if (const auto failed = call.FailedStatus()) {
        return call.End(*failed);
    }
    const HRESULT status = Dispatcher(*m_machine).GetObject(path, found);
    if (call.Has(Effect::NullObject)) {
        found = {};
    }
    return call.End(status);
}

template <class Find>
Outcome MachineConnection::Enumerate(ProviderCall& call, const CallContext& context, std::wstring_view target,
                                     std::unique_ptr<ObjectStream>& found, Find find) {
    if (!call.Begin()) {
        return call.NotBegun();
    }
    std::vector<Object> objects;
    const HRESULT status = find(objects);
    if (FAILED(status) && !context.Semisynchronous()) {
        return call.End(status);
    }
    if (!call.Has(Effect::NullObject)) {
        found = std::make_unique<Answer>(*m_machine, std::wstring(target), MakeStream(std::move(objects)),
                                         status);
    }
    return call.End(S_OK);
}

Outcome MachineConnection::Instances(const CallContext& context, std::wstring_view className, Depth depth,
                                     std::unique_ptr<ObjectStream>& found) {
    ProviderCall call(*m_machine, Operation::CreateInstanceEnum, className, context);
    return Enumerate(call, context, className, found, [&](std::vector<Object>& objects) {
        return Dispatcher(*m_machine).InstancesOf(className, depth, objects);
    });
}

Outcome MachineConnection::Classes(const CallContext& context, std::wstring_view superclass, Depth depth,
                                   std::unique_ptr<ObjectStream>& found) {
    ProviderCall call(*m_machine, Operation::CreateClassEnum, superclass, context);
    return Enumerate(call, context, superclass, found, [&](std::vector<Object>& objects) {
        return Dispatcher(*m_machine).ClassesBelow(superclass, depth, objects);
    });
}

Outcome MachineConnection::Query(const CallContext& context, std::wstring_view wql,
                                 std::unique_ptr<ObjectStream>& found) {
    ProviderCall call(*m_machine, Operation::ExecQuery, wql, context);
    return Enumerate(call, context, wql, found, [&](std::vector<Object>& objects) {
        const HRESULT status = Dispatcher(*m_machine).Query(wql, objects);
        KeepSubset(context, objects);
        return status;
    });
}

Outcome MachineConnection::ExecMethod(const CallContext& context, std::wstring_view path,
                                      std::wstring_view method, const Filled* in, InstancePtr& out) {
    ProviderCall call(*m_machine, Operation::ExecMethod, path, context, method);
    call.SetArguments(in);
    if (!call.Begin()) {
        return call.NotBegun();
    }
    if (const auto failed = call.FailedStatus()) {
        return call.End(*failed);
    }
    Request request(*m_machine, context);
    if (call.Has(Effect::Verdict)) {
        request.verdict = call.Fault().verdict;
    } else if (call.Has(Effect::PowerCut)) {
        request.CutPower(call.Fault().code);
    }
    const HRESULT status =
        Dispatcher(*m_machine).ExecMethod(request, path, method, in != nullptr ? &in->values : nullptr, out);
    if (call.Has(Effect::NullObject) || call.Has(Effect::NoOutParameters)) {
        out = nullptr;
    }
    call.SetNote(request.Notes());
    return call.End(status);
}

Outcome MachineConnection::PutInstance(const CallContext& context, const Filled& instance, WriteMode mode) {
    const auto address = AddressOf(instance.values);
    const std::wstring target = address ? FullPathOf(*this, *address) : instance.values.definition->name;
    ProviderCall call(*m_machine, Operation::PutInstance, target, context);
    call.SetArguments(&instance);
    if (!call.Begin()) {
        return call.NotBegun();
    }
    if (const auto failed = call.FailedStatus()) {
        return call.End(*failed);
    }
    Request request(*m_machine, context);
    const HRESULT status = Dispatcher(*m_machine).PutInstance(request, instance.values, mode);
    call.SetNote(request.Notes());
    return call.End(status);
}

Outcome MachineConnection::DeleteInstance(const CallContext& context, std::wstring_view path) {
    ProviderCall call(*m_machine, Operation::DeleteInstance, path, context);
    if (!call.Begin()) {
        return call.NotBegun();
    }
    if (const auto failed = call.FailedStatus()) {
        return call.End(*failed);
    }
    Request request(*m_machine, context);
    const HRESULT status = Dispatcher(*m_machine).DeleteInstance(request, path);
    call.SetNote(request.Notes());
    return call.End(status);
}

Outcome MachineHost::Connect(const CallContext& context, const ConnectArguments& arguments,
                             std::shared_ptr<Connection>& connection) {
    ProviderCall call(*m_machine, Operation::ConnectServer, arguments.resource, context);
    call.SetArguments(arguments.Named());
    if (!call.Begin()) {
        return call.NotBegun();
    }
    if (!NamesNamespace(arguments.resource, m_machine->Store().NamespaceName())) {
        return call.End(HRESULT(WBEM_E_INVALID_NAMESPACE));
    }
    if (!call.Has(Effect::NullObject)) {
        connection = std::make_shared<MachineConnection>(m_machine);
    }
    return call.End(S_OK);
}

std::shared_ptr<Host> HostOf(std::shared_ptr<Machine> machine) {
    return std::make_shared<MachineHost>(std::move(machine));
}

Registration::Registration(std::shared_ptr<Machine> machine) : m_registration(HostOf(std::move(machine))) {}

} // namespace quillet::simulator
