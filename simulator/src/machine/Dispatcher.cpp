// What the provider answers to each call.
#include "machine/Dispatcher.h"

#include "machine/MachineState.h"

#include <quillet-wmi/OwnCounts.h>

#include <algorithm>
#include <set>

namespace quillet::simulator {

namespace {

std::vector<Object> Projected(const std::vector<InstancePtr>& instances,
                              const std::vector<std::wstring>& names) {
    std::map<ClassPtr, ClassPtr> classes;
    std::vector<Object> objects;
    for (const auto& instance : instances) {
        auto& definition = classes[instance->definition];
        if (definition == nullptr) {
            definition = Project(*instance->definition, names);
        }
        auto part = std::make_shared<Instance>(definition);
        for (const auto& property : definition->properties) {
            part->Set(property.name, *instance->Find(property.name));
        }
        objects.push_back({definition, std::move(part)});
    }
    return objects;
}

/// The class of an instance, counted with the instance that holds it: the count of a class is shared by the
/// threads of all clients.
ClassPtr DefinitionOf(const InstancePtr& instance) {
    return ClassPtr(instance, instance->definition.get());
}

/// Why there is no such instance.
HRESULT Missing(const Repository& store, const ObjectPath& path) {
    return store.FindClass(path.className) == nullptr ? HRESULT(WBEM_E_INVALID_CLASS)
                                                      : HRESULT(WBEM_E_NOT_FOUND);
}

/// What one client alone holds.
auto OwnList(std::vector<InstancePtr> instances) {
    return std::make_shared<const std::vector<InstancePtr>>(std::move(instances));
}

/// Instances with all their properties, counted with the answer that they are part of: it is one client's
/// alone, and their own counts are shared by the threads of all clients.
std::vector<Object> Whole(const std::shared_ptr<const std::vector<InstancePtr>>& answer) {
    std::vector<Object> objects;
    objects.reserve(answer->size());
    for (const InstancePtr& instance : *answer) {
        objects.push_back(
            {ClassPtr(answer, instance->definition.get()), InstancePtr(answer, instance.get())});
    }
    return objects;
}

/// The classes of some instances, each once.
std::vector<Object> ClassesOf(const std::vector<InstancePtr>& instances) {
    std::set<ClassPtr> seen;
    std::vector<Object> objects;
    for (const auto& instance : instances) {
        if (seen.insert(instance->definition).second) {
            objects.push_back({instance->definition, nullptr});
        }
    }
    return objects;
}

/// Whether a class has the in-parameters of a method, all of them and in their order, as every class has that
/// the method's own signature made.
bool IsSignatureOf(const Method& method, const ClassDefinition& given) {
    return std::equal(method.in.begin(), method.in.end(), given.properties.begin(), given.properties.end(),
                      [](const Property& expected, const Property& parameter) {
                          return expected.name == parameter.name && expected.type == parameter.type;
                      });
}

/// Takes the in-parameters that a client put over into an instance of the method's own signature.
HRESULT TakeParameters(const Method& method, const Instance* given, Instance& in) {
    if (given != nullptr && SameName(given->definition->name, L"__PARAMETERS") &&
        IsSignatureOf(method, *given->definition)) {
        in = *given;
        return S_OK;
    }
    const auto signature = InSignature(method);
    if (signature != nullptr) {
        in = Instance(signature);
    }
    if (given == nullptr) {
        return S_OK;
    }
    const auto& definition = *given->definition;
    if (!SameName(definition.name, L"__PARAMETERS")) {
        return HRESULT(WBEM_E_INVALID_METHOD_PARAMETERS);
    }
    for (std::size_t index = 0; index < definition.properties.size(); ++index) {
        const auto& parameter = definition.properties[index];
        const auto* expected = signature != nullptr ? signature->FindProperty(parameter.name) : nullptr;
        if (expected == nullptr || expected->type != parameter.type) {
            return HRESULT(WBEM_E_INVALID_METHOD_PARAMETERS);
        }
        in.Set(parameter.name, given->values[index]);
    }
    return S_OK;
}

} // namespace

HRESULT Dispatcher::ParsePath(std::wstring_view text, ObjectPath& path) const {
    auto parsed = ObjectPath::Parse(text);
    if (!parsed) {
        return HRESULT(WBEM_E_INVALID_OBJECT_PATH);
    }
    if (!parsed->namespacePath.empty() &&
        !SameName(parsed->namespacePath, m_machine.Store().NamespaceName())) {
        return HRESULT(WBEM_E_INVALID_NAMESPACE);
    }
    path = *std::move(parsed);
    return S_OK;
}

HRESULT Dispatcher::GetObject(std::wstring_view text, Object& found) const {
    m_machine.Internals().CatchUp();
    ObjectPath path;
    if (const HRESULT parsed = ParsePath(text, path); FAILED(parsed)) {
        return parsed;
    }
    const auto& store = m_machine.Store();
    if (path.IsClass()) {
        // Nearly every operation asks for a class.
        found.definition = CountedAlone(store.FindClass(path.className));
        return found.definition != nullptr ? HRESULT(S_OK) : HRESULT(WBEM_E_NOT_FOUND);
    }
    found.instance = store.FindInstance(path);
    if (found.instance == nullptr) {
        return Missing(store, path);
    }
    found.definition = DefinitionOf(found.instance);
    return S_OK;
}

HRESULT Dispatcher::InstancesOf(std::wstring_view className, Depth depth, std::vector<Object>& found) const {
    m_machine.Internals().CatchUp();
    const auto& store = m_machine.Store();
    if (store.FindClass(className) == nullptr) {
        return HRESULT(WBEM_E_INVALID_CLASS);
    }
    found = Whole(CountedAlone(store.InstanceList(className, depth == Depth::Shallow)));
    return S_OK;
}

HRESULT Dispatcher::ClassesBelow(std::wstring_view superclass, Depth depth,
                                 std::vector<Object>& found) const {
    const auto& store = m_machine.Store();
    if (!superclass.empty() && store.FindClass(superclass) == nullptr) {
        return HRESULT(WBEM_E_INVALID_CLASS);
    }
    for (const auto& definition : store.Classes()) {
        const bool direct = SameName(definition->superclass, superclass);
        const bool below =
            superclass.empty() || (!SameName(definition->name, superclass) && definition->IsA(superclass));
        if (depth == Depth::Shallow ? direct : below) {
            found.push_back({definition, nullptr});
        }
    }
    return S_OK;
}

HRESULT Dispatcher::Query(std::wstring_view text, std::vector<Object>& found) const {
    m_machine.Internals().CatchUp();
    const auto query = ParseWql(text);
    if (!query) {
        return HRESULT(WBEM_E_INVALID_QUERY);
    }
    const auto& store = m_machine.Store();
    std::vector<InstancePtr> instances;
    if (query->kind != WqlQuery::Kind::Select) {
        const HRESULT result = store.Associations(*query, instances);
        if (SUCCEEDED(result)) {
            found = query->classDefsOnly ? ClassesOf(instances) : Whole(OwnList(std::move(instances)));
        }
        return result;
    }
    if (const auto definition = store.FindClass(query->className)) {
        for (const auto& name : query->properties) {
            if (definition->FindProperty(name) == nullptr && name.rfind(L"__", 0) != 0) {
                return HRESULT(WBEM_E_INVALID_QUERY);
            }
        }
    }
    const HRESULT result = store.Select(*query, instances);
    if (FAILED(result)) {
        return result;
    }
    if (query->properties.empty()) {
        found = Whole(OwnList(std::move(instances)));
    } else {
        found = Projected(instances, query->properties);
    }
    return result;
}

HRESULT Dispatcher::ExecMethod(Request& request, std::wstring_view text, std::wstring_view name,
                               const Instance* given, InstancePtr& out) const {
    m_machine.Internals().CatchUp();
    ObjectPath path;
    if (const HRESULT parsed = ParsePath(text, path); FAILED(parsed)) {
        return parsed;
    }
    const auto& store = m_machine.Store();
    InstancePtr instance;
    ClassPtr definition;
    if (path.IsClass()) {
        definition = store.FindClass(path.className);
        if (definition == nullptr) {
            return HRESULT(WBEM_E_INVALID_CLASS);
        }
    } else {
        instance = store.FindInstance(path);
        if (instance == nullptr) {
            return Missing(store, path);
        }
        definition = DefinitionOf(instance);
    }
    const auto* method = definition->FindMethod(name);
    if (method == nullptr) {
        return HRESULT(WBEM_E_INVALID_METHOD);
    }
    MethodCall call{request, definition, *method, std::move(instance), {}, {}};
    if (const HRESULT taken = TakeParameters(*method, given, call.in); FAILED(taken)) {
        return taken;
    }
    if (const auto signature = OutSignature(*method)) {
        call.out = Instance(signature);
    }
    HRESULT result = S_OK;
    if (request.verdict) {
        call.Answer(L"ReturnValue", *request.verdict);
    } else {
        auto& machine = m_machine.Internals();
        auto& provider = machine.ProviderOf(*definition);
        // Others go on while a method takes its time, and may change or delete the instance meanwhile.
        const auto duration = provider.Duration(call);
        if (const auto cut = request.PowerCut()) {
            machine.clock.Pass(duration / 2);
            return *cut;
        }
        machine.clock.Pass(duration);
        std::unique_lock lock(machine.changes, std::defer_lock);
        if (provider.Changes(call)) {
            lock.lock();
        }
        if (call.instance != nullptr) {
            call.instance = store.FindInstance(path);
            if (call.instance == nullptr) {
                return HRESULT(WBEM_E_NOT_FOUND);
            }
        }
        result = provider.ExecMethod(call);
    }
    if (SUCCEEDED(result) && call.out.definition != nullptr) {
        out = std::make_shared<Instance>(std::move(call.out));
    }
    return result;
}

HRESULT Dispatcher::PutInstance(Request& request, const Instance& instance, WriteMode mode) const {
    const std::lock_guard lock(m_machine.Internals().changes);
    // An object of another schema, of a SELECT with a list or of a method's signature is not the provider's.
    if (m_machine.Store().FindClass(instance.definition->name) != instance.definition) {
        return HRESULT(WBEM_E_INVALID_OBJECT);
    }
    if (instance.definition->qualifiers.Has(L"abstract")) {
        return HRESULT(WBEM_E_INVALID_OPERATION);
    }
    if (const HRESULT allowed = request.Change(); FAILED(allowed)) {
        return allowed;
    }
    const HRESULT result =
        m_machine.Internals().ProviderOf(*instance.definition).PutInstance(request, instance, mode);
    if (SUCCEEDED(result)) {
        request.Changed(*instance.definition);
    }
    return result;
}

HRESULT Dispatcher::DeleteInstance(Request& request, std::wstring_view text) const {
    const std::lock_guard lock(m_machine.Internals().changes);
    ObjectPath path;
    if (const HRESULT parsed = ParsePath(text, path); FAILED(parsed)) {
        return parsed;
    }
    if (path.IsClass()) {
        return HRESULT(WBEM_E_INVALID_OBJECT_PATH);
    }
    const auto& store = m_machine.Store();
    const auto instance = store.FindInstance(path);
    if (instance == nullptr) {
        return Missing(store, path);
    }
    if (const HRESULT allowed = request.Change(); FAILED(allowed)) {
        return allowed;
    }
    const auto& definition = *instance->definition;
    const HRESULT result =
        m_machine.Internals().ProviderOf(definition).DeleteInstance(request, path, *instance);
    if (SUCCEEDED(result)) {
        request.Changed(definition);
    }
    return result;
}

} // namespace quillet::simulator
