// Classes and instances of the repository: what may be stored, and how it is found again.
#include "repository/RepositoryState.h"

#include <quillet-wmi/ClassMerge.h>

#include <quillet-wmi/Text.h>

#include <algorithm>

namespace quillet::simulator {

Repository::State::State(std::wstring server, std::wstring nameSpace)
    : serverName(std::move(server)), namespaceName(std::move(nameSpace)) {}

ClassEntry* Repository::State::FindEntry(std::wstring_view name) const {
    const auto found = classes.find(name);
    return found != classes.end() ? found->second.get() : nullptr;
}

HRESULT Repository::State::AddClass(ClassDefinition definition, std::wstring& reason) {
    if (FindEntry(definition.name) != nullptr) {
        reason = L"class " + Quoted(definition.name) + L" exists already";
        return Code(WBEM_E_ALREADY_EXISTS);
    }
    ClassEntry* superclass = nullptr;
    if (!definition.superclass.empty()) {
        superclass = FindEntry(definition.superclass);
        if (superclass == nullptr) {
            reason = L"unknown superclass " + Quoted(definition.superclass);
            return Code(WBEM_E_INVALID_SUPERCLASS);
        }
    }
    if (!MergeClass(definition, superclass != nullptr ? superclass->definition.get() : nullptr, reason)) {
        return Code(WBEM_E_INVALID_CLASS);
    }
    auto entry = std::make_unique<ClassEntry>();
    entry->superclass = superclass;
    for (std::size_t i = 0; i < definition.properties.size(); ++i) {
        if (definition.properties[i].IsKey()) {
            entry->keys.push_back(i);
        }
        if (definition.IsAssociation() && definition.properties[i].type == CIM_REFERENCE) {
            entry->references.push_back(i);
        }
    }
    std::wstring folded = Folded(definition.name);
    entry->abstract = definition.qualifiers.Has(L"abstract");
    entry->singleton = entry->keys.empty() && definition.qualifiers.Has(L"singleton");
    entry->family = superclass != nullptr && !superclass->keys.empty() ? superclass->family : folded;
    entry->definition = std::make_shared<const ClassDefinition>(std::move(definition));
    if (superclass != nullptr) {
        superclass->subclasses.push_back(entry.get());
    }
    classOrder.push_back(entry.get());
    classes.emplace(entry->definition->name, std::move(entry));
    if (unknownClasses.erase(folded) != 0) {
        Rebuild();
    }
    Changed();
    return 0;
}

HRESULT Repository::State::CheckValues(Instance& instance, std::wstring& reason) const {
    for (std::size_t i = 0; i < instance.values.size(); ++i) {
        const Property& property = instance.definition->properties[i];
        Value& value = instance.values[i];
        if (value.IsNull()) {
            continue;
        }
        if (!Fits(value, property.type)) {
            reason = L"the value of property " + Quoted(property.name) + L" does not fit " +
                     CimTypeName(property.type) + ((property.type & CIM_FLAG_ARRAY) != 0 ? L"[]" : L"");
            return Code(WBEM_E_TYPE_MISMATCH);
        }
        if (property.arrayLimit != 0 && value.Size() > property.arrayLimit) {
            reason = L"property " + Quoted(property.name) + L" holds at most " +
                     std::to_wstring(property.arrayLimit) + L" elements";
            return Code(WBEM_E_TYPE_MISMATCH);
        }
        const auto* scalar = value.AsScalar();
        const auto* text = scalar != nullptr ? std::get_if<std::wstring>(scalar) : nullptr;
        if (text == nullptr) {
            value = Normalised(std::move(value), property.type);
        }
        std::wstring error;
        if (text != nullptr && property.type == CIM_REFERENCE && !ObjectPath::Parse(*text, &error)) {
            reason = L"the value of property " + Quoted(property.name) + L" is no object path: " + error;
            return Code(WBEM_E_INVALID_OBJECT);
        }
    }
    return 0;
}

HRESULT Repository::State::StoreInstance(Instance& instance, WriteMode mode, InstancePtr& kept,
                                         std::wstring& reason) {
    ClassEntry* entry = instance.definition ? FindEntry(instance.definition->name) : nullptr;
    if (entry == nullptr || entry->definition != instance.definition ||
        instance.values.size() != entry->definition->properties.size()) {
        reason = L"the instance does not belong to a class of this repository";
        return Code(WBEM_E_INVALID_OBJECT);
    }
    if (entry->abstract) {
        reason = L"class " + Quoted(entry->definition->name) + L" is abstract";
        return Code(WBEM_E_INVALID_OBJECT);
    }
    if (const HRESULT result = CheckValues(instance, reason); result != 0) {
        return result;
    }
    std::optional<std::wstring> canonical = CanonicalPath(instance, *entry, reason);
    if (!canonical) {
        return Code(WBEM_E_INVALID_OBJECT);
    }
    const auto present = instances.find(*canonical);
    if (present == instances.end() && mode == WriteMode::UpdateOnly) {
        reason = L"there is no such instance";
        return Code(WBEM_E_NOT_FOUND);
    }
    if (present != instances.end() && mode == WriteMode::CreateOnly) {
        reason = L"an instance with these keys exists already";
        return Code(WBEM_E_ALREADY_EXISTS);
    }
    if (present != instances.end() && present->second.entry != entry) {
        reason = L"an instance of class " + Quoted(present->second.entry->definition->name) +
                 L" has these keys already";
        return Code(WBEM_E_ALREADY_EXISTS);
    }
    Stored stored{entry, nextNumber, nullptr};
    if (present != instances.end()) {
        stored.number = present->second.number;
        Unlink(present->second);
    } else {
        ++nextNumber;
    }
    kept = std::make_shared<const Instance>(std::move(instance));
    stored.instance = kept;
    NoteUnknownClasses(stored);
    Link(stored);
    instances.insert_or_assign(*std::move(canonical), std::move(stored));
    Changed();
    return 0;
}

void Repository::State::NoteUnknownClasses(const Stored& stored) {
    if (!stored.entry->references.empty()) {
        return; // an association, whose references are looked at when they are linked
    }
    const Instance& instance = *stored.instance;
    for (std::size_t i = 0; i < instance.values.size(); ++i) {
        const Scalar* target = instance.values[i].AsScalar();
        if (target != nullptr && instance.definition->properties[i].type == CIM_REFERENCE) {
            Identity(std::get<std::wstring>(*target), &unknownClasses);
        }
    }
}

void Repository::State::Link(const Stored& stored) {
    ClassEntry& entry = *stored.entry;
    entry.extent.insert_or_assign(entry.extent.end(), stored.number, stored.instance);
    for (const std::size_t index : entry.references) {
        if (const Scalar* target = stored.instance->values[index].AsScalar()) {
            referrers[Identity(std::get<std::wstring>(*target), &unknownClasses)][{stored.number, index}] =
                stored.instance;
        }
    }
    for (auto& [property, index] : entry.indexes) {
        const CIMTYPE type = entry.definition->properties[property].type;
        if (const auto key = IndexKey(stored.instance->values[property], type, IdentityFunction())) {
            index[*key].insert(stored.number);
        }
    }
}

void Repository::State::Unlink(const Stored& stored) {
    ClassEntry& entry = *stored.entry;
    for (const std::size_t index : entry.references) {
        const Scalar* target = stored.instance->values[index].AsScalar();
        const auto found =
            target != nullptr ? referrers.find(Identity(std::get<std::wstring>(*target))) : referrers.end();
        if (found != referrers.end()) {
            found->second.erase({stored.number, index});
            if (found->second.empty()) {
                referrers.erase(found);
            }
        }
    }
    for (auto& [property, index] : entry.indexes) {
        const CIMTYPE type = entry.definition->properties[property].type;
        const auto key = IndexKey(stored.instance->values[property], type, IdentityFunction());
        const auto found = key ? index.find(*key) : index.end();
        if (found != index.end()) {
            found->second.erase(stored.number);
            if (found->second.empty()) {
                index.erase(found);
            }
        }
    }
    entry.extent.erase(stored.number);
}

void Repository::State::Rebuild() {
    std::map<std::uint64_t, Stored> all;
    for (auto& [canonical, stored] : instances) {
        all.emplace(stored.number, std::move(stored));
    }
    instances.clear();
    referrers.clear();
    unknownClasses.clear();
    for (ClassEntry* entry : classOrder) {
        entry->indexes.clear();
        entry->extent.clear();
    }
    for (auto& [number, stored] : all) {
        std::wstring reason;
        const auto canonical = CanonicalPath(*stored.instance, *stored.entry, reason);
        NoteUnknownClasses(stored);
        // Paths that looked different before the class was known may name one object: the first one stays.
        if (instances.try_emplace(*canonical, stored).second) {
            Link(stored);
        }
    }
}

const Stored* Repository::State::Find(const ObjectPath& path) const {
    const bool here = (path.server.empty() || path.server == L"." || SameName(path.server, serverName)) &&
                      (path.namespacePath.empty() || SameName(path.namespacePath, namespaceName));
    const ClassEntry* entry = here ? FindEntry(path.className) : nullptr;
    if (entry == nullptr) {
        return nullptr;
    }
    const std::optional<std::wstring> canonical = CanonicalPath(path, *entry, nullptr, 0);
    const auto found = canonical ? instances.find(*canonical) : instances.end();
    return found != instances.end() && (found->second.entry == entry ||
                                        found->second.entry->definition->IsA(entry->definition->name))
               ? &found->second
               : nullptr;
}

bool Repository::State::DeleteInstance(const ObjectPath& path) {
    const Stored* found = Find(path);
    if (found == nullptr) {
        return false;
    }
    const Stored stored = *found;
    std::wstring reason;
    Unlink(stored);
    instances.erase(*CanonicalPath(*stored.instance, *stored.entry, reason));
    Changed();
    return true;
}

void Repository::State::Collect(ClassEntry* entry, std::vector<ClassEntry*>& result) {
    if (entry == nullptr) {
        return;
    }
    std::size_t next = result.size();
    result.push_back(entry);
    for (; next < result.size(); ++next) {
        const std::vector<ClassEntry*>& subclasses = result[next]->subclasses;
        result.insert(result.end(), subclasses.begin(), subclasses.end());
    }
}

void Repository::State::Changed() {
    ++generation;
    lists.clear();
}

Repository::State::ListPtr Repository::State::InstanceList(ClassEntry* entry, bool shallow) const {
    const std::lock_guard lock(listsMutex);
    ListPtr& list = lists[{entry, shallow}];
    if (list == nullptr) {
        list = std::make_shared<const std::vector<InstancePtr>>(Instances(entry, shallow));
    }
    return list;
}

std::vector<InstancePtr> Repository::State::Instances(ClassEntry* entry, bool shallow) const {
    std::vector<ClassEntry*> entries;
    if (shallow) {
        entries.push_back(entry);
    } else {
        Collect(entry, entries);
    }
    std::vector<std::pair<std::uint64_t, InstancePtr>> numbered;
    for (const ClassEntry* each : entries) {
        numbered.insert(numbered.end(), each->extent.begin(), each->extent.end());
    }
    std::sort(numbered.begin(), numbered.end(),
              [](const auto& left, const auto& right) { return left.first < right.first; });
    std::vector<InstancePtr> result;
    result.reserve(numbered.size());
    for (auto& [number, instance] : numbered) {
        result.push_back(std::move(instance));
    }
    return result;
}

} // namespace quillet::simulator
