// Canonical paths, indexes and queries of the repository.
#include "RepositoryState.h"

#include "model/ClassMerge.h"

#include <quillet-wmi/Text.h>

#include <algorithm>

namespace quillet::simulator {

namespace {

/// A reference among the keys names an object that may itself have references among its keys. Nobody goes
/// deeper than this; a hostile path may try.
constexpr unsigned kMaximumReferenceDepth = 4;

constexpr HRESULT Code(WBEMSTATUS status) noexcept {
    return static_cast<HRESULT>(status);
}

std::wstring Quoted(std::wstring_view name) {
    return L"'" + std::wstring(name) + L"'";
}

/// The value of a key in a path as a value of the key's type; nothing when it can be none.
std::optional<Scalar> KeyValue(const Scalar& written, CIMTYPE type) {
    const auto* text = std::get_if<std::wstring>(&written);
    if (IsIntegerType(type) && text != nullptr) {
        // 64-bit numbers travel as text, and some clients quote what they got.
        const std::optional<TextNumber> number = ParseDecimal(*text);
        if (!number) {
            return std::nullopt;
        }
        const Scalar parsed = number->negative ? Scalar(static_cast<std::int64_t>(0 - number->magnitude))
                                               : Scalar(number->magnitude);
        return KeyValue(parsed, type);
    }
    if (type == CIM_CHAR16 && text != nullptr && text->size() == 1) {
        return Scalar(std::uint64_t{static_cast<std::uint16_t>(text->front())});
    }
    const Value value{written};
    return Fits(value, type) ? std::optional(*Normalised(value, type).AsScalar()) : std::nullopt;
}

/// A path as far as it can be brought to one form without knowing its class.
std::wstring OpaqueIdentity(ObjectPath path) {
    std::sort(path.keys.begin(), path.keys.end(), [](const ObjectPath::Key& left, const auto& right) {
        return CompareNames(left.name, right.name) < 0;
    });
    path.server.clear();
    return L'?' + Folded(path.Text());
}

} // namespace

Repository::State::State(std::wstring server, std::wstring nameSpace)
    : serverName(std::move(server)), namespaceName(std::move(nameSpace)) {}

ClassEntry* Repository::State::FindEntry(std::wstring_view name) const {
    const auto found = classes.find(Folded(name));
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
    entry->singleton = entry->keys.empty() && definition.qualifiers.Has(L"singleton");
    entry->family = superclass != nullptr && !superclass->keys.empty() ? superclass->family : folded;
    entry->definition = std::make_shared<const ClassDefinition>(std::move(definition));
    if (superclass != nullptr) {
        superclass->subclasses.push_back(entry.get());
    }
    classOrder.push_back(entry.get());
    classes.emplace(folded, std::move(entry));
    if (unknownClasses.erase(folded) != 0) {
        Rebuild();
    }
    ++generation;
    return 0;
}

void Repository::State::AppendKey(std::wstring& canonical, CIMTYPE type, const Scalar& value,
                                  std::set<std::wstring>* unknown, unsigned depth) const {
    // Lengths in front of texts keep one key's text from posing as the next key.
    const auto append = [&canonical](const std::wstring& text) {
        canonical += std::to_wstring(text.size());
        canonical += L':';
        canonical += text;
    };
    canonical += L';';
    if (const auto* text = std::get_if<std::wstring>(&value)) {
        append(type == CIM_REFERENCE ? Identity(*text, unknown, depth + 1) : Folded(*text));
    } else if (const auto* flag = std::get_if<bool>(&value)) {
        canonical += *flag ? L'1' : L'0';
    } else if (const auto* number = std::get_if<std::int64_t>(&value)) {
        canonical += std::to_wstring(*number);
    } else if (const auto* magnitude = std::get_if<std::uint64_t>(&value)) {
        canonical += std::to_wstring(*magnitude);
    }
}

std::optional<std::wstring> Repository::State::CanonicalPath(const ObjectPath& path, const ClassEntry& entry,
                                                             std::set<std::wstring>* unknown,
                                                             unsigned depth) const {
    if (entry.singleton) {
        return path.singleton ? std::optional(L'@' + entry.family) : std::nullopt;
    }
    if (path.keys.empty() || path.keys.size() != entry.keys.size()) {
        return std::nullopt;
    }
    std::wstring canonical = L'=' + entry.family;
    for (const std::size_t index : entry.keys) {
        const Property& property = entry.definition->properties[index];
        const auto key =
            std::find_if(path.keys.begin(), path.keys.end(), [&](const ObjectPath::Key& candidate) {
                return candidate.name.empty() || SameName(candidate.name, property.name);
            });
        const std::optional<Scalar> value =
            key != path.keys.end() ? KeyValue(key->value, property.type) : std::nullopt;
        if (!value) {
            return std::nullopt;
        }
        AppendKey(canonical, property.type, *value, unknown, depth);
    }
    return canonical;
}

std::optional<std::wstring> Repository::State::CanonicalPath(const Instance& instance,
                                                             const ClassEntry& entry,
                                                             std::wstring& reason) const {
    if (entry.singleton) {
        return L'@' + entry.family;
    }
    if (entry.keys.empty()) {
        reason = L"class " + Quoted(entry.definition->name) + L" has no key and is no singleton";
        return std::nullopt;
    }
    std::wstring canonical = L'=' + entry.family;
    for (const std::size_t index : entry.keys) {
        const Property& property = entry.definition->properties[index];
        const Scalar* value = instance.values[index].AsScalar();
        if (value == nullptr) {
            reason = L"key " + Quoted(property.name) + L" has no value";
            return std::nullopt;
        }
        AppendKey(canonical, property.type, *value, nullptr, 0);
    }
    return canonical;
}

std::wstring Repository::State::Identity(std::wstring_view text, std::set<std::wstring>* unknown,
                                         unsigned depth) const {
    std::optional<ObjectPath> path = ObjectPath::Parse(text);
    if (!path || depth > kMaximumReferenceDepth) {
        return L'?' + Folded(text);
    }
    if (!path->namespacePath.empty() && !SameName(path->namespacePath, namespaceName)) {
        return OpaqueIdentity(std::move(*path));
    }
    path->namespacePath.clear();
    const ClassEntry* entry = FindEntry(path->className);
    if (entry == nullptr) {
        if (unknown != nullptr) {
            unknown->insert(Folded(path->className));
        }
        return OpaqueIdentity(std::move(*path));
    }
    if (!path->IsClass()) {
        if (std::optional<std::wstring> canonical = CanonicalPath(*path, *entry, unknown, depth)) {
            return std::move(*canonical);
        }
    }
    return OpaqueIdentity(std::move(*path));
}

ObjectIdentity Repository::State::IdentityFunction() const {
    return [this](std::wstring_view path) { return Identity(path); };
}

HRESULT Repository::State::CheckValues(Instance& instance, std::wstring& reason) const {
    for (std::size_t i = 0; i < instance.values.size(); ++i) {
        const Property& property = instance.definition->properties[i];
        Value& value = instance.values[i];
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
        value = Normalised(std::move(value), property.type);
        const Scalar* scalar = property.type == CIM_REFERENCE ? value.AsScalar() : nullptr;
        std::wstring error;
        if (scalar != nullptr && !ObjectPath::Parse(std::get<std::wstring>(*scalar), &error)) {
            reason = L"the value of property " + Quoted(property.name) + L" is no object path: " + error;
            return Code(WBEM_E_INVALID_OBJECT);
        }
    }
    return 0;
}

HRESULT Repository::State::PutInstance(Instance instance, Write mode, std::wstring& reason) {
    ClassEntry* entry = instance.definition ? FindEntry(instance.definition->name) : nullptr;
    if (entry == nullptr || entry->definition != instance.definition ||
        instance.values.size() != entry->definition->properties.size()) {
        reason = L"the instance does not belong to a class of this repository";
        return Code(WBEM_E_INVALID_OBJECT);
    }
    if (entry->definition->qualifiers.Has(L"abstract")) {
        reason = L"class " + Quoted(entry->definition->name) + L" is abstract";
        return Code(WBEM_E_INVALID_OBJECT);
    }
    if (const HRESULT result = CheckValues(instance, reason); result != 0) {
        return result;
    }
    const std::optional<std::wstring> canonical = CanonicalPath(instance, *entry, reason);
    if (!canonical) {
        return Code(WBEM_E_INVALID_OBJECT);
    }
    const auto present = instances.find(*canonical);
    if (present == instances.end() && mode == Write::UpdateOnly) {
        reason = L"there is no such instance";
        return Code(WBEM_E_NOT_FOUND);
    }
    if (present != instances.end() && mode == Write::CreateOnly) {
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
    stored.instance = std::make_shared<const Instance>(std::move(instance));
    NoteUnknownClasses(*stored.instance);
    Link(stored);
    instances.insert_or_assign(*canonical, std::move(stored));
    ++generation;
    return 0;
}

void Repository::State::NoteUnknownClasses(const Instance& instance) {
    for (std::size_t i = 0; i < instance.values.size(); ++i) {
        const Scalar* target = instance.values[i].AsScalar();
        if (target != nullptr && instance.definition->properties[i].type == CIM_REFERENCE) {
            Identity(std::get<std::wstring>(*target), &unknownClasses);
        }
    }
}

void Repository::State::Link(const Stored& stored) {
    ClassEntry& entry = *stored.entry;
    entry.extent.insert_or_assign(stored.number, stored.instance);
    for (const std::size_t index : entry.references) {
        if (const Scalar* target = stored.instance->values[index].AsScalar()) {
            referrers[Identity(std::get<std::wstring>(*target))][{stored.number, index}] = stored.instance;
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
        NoteUnknownClasses(*stored.instance);
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
    return found != instances.end() && found->second.entry->definition->IsA(entry->definition->name)
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
    ++generation;
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

namespace {

bool IsKnown(const ClassDefinition& definition, std::wstring_view property) {
    return property.substr(0, 2) == L"__" || definition.FindProperty(property) != nullptr;
}

bool AllKnown(const ClassDefinition& definition, const WqlCondition& condition) {
    if (condition.operands.empty()) {
        return IsKnown(definition, condition.property);
    }
    return std::all_of(condition.operands.begin(), condition.operands.end(),
                       [&](const WqlCondition& operand) { return AllKnown(definition, operand); });
}

} // namespace

bool Repository::State::QueryFits(const ClassDefinition& definition, const WqlQuery& query) const {
    return (!query.where || AllKnown(definition, *query.where)) &&
           std::all_of(query.properties.begin(), query.properties.end(),
                       [&](const std::wstring& property) { return IsKnown(definition, property); });
}

/// Visits the equalities of a condition that an index could serve, with the property and the index keys.
template <class Visitor>
void Repository::State::VisitIndexable(const ClassEntry& entry, const WqlCondition& condition,
                                       Visitor visitor) const {
    if (condition.kind == WqlCondition::Kind::And || condition.kind == WqlCondition::Kind::Or) {
        for (const WqlCondition& operand : condition.operands) {
            VisitIndexable(entry, operand, visitor);
        }
        return;
    }
    const std::optional<std::size_t> property = entry.definition->PropertyIndex(condition.property);
    if (property && IndexKeys(condition, entry.definition->properties[*property].type, IdentityFunction())) {
        visitor(*property);
    }
}

bool Repository::State::NeedsIndexes(ClassEntry* entry, const WqlCondition& condition) const {
    std::vector<ClassEntry*> entries;
    Collect(entry, entries);
    bool needs = false;
    for (const ClassEntry* each : entries) {
        VisitIndexable(*each, condition, [&](std::size_t property) {
            needs = needs || each->indexes.find(property) == each->indexes.end();
        });
    }
    return needs;
}

void Repository::State::MakeIndexes(ClassEntry* entry, const WqlCondition& condition) {
    std::vector<ClassEntry*> entries;
    Collect(entry, entries);
    for (ClassEntry* each : entries) {
        VisitIndexable(*each, condition, [&](std::size_t property) {
            const auto [position, isNew] = each->indexes.try_emplace(property);
            if (!isNew) {
                return;
            }
            const CIMTYPE type = each->definition->properties[property].type;
            for (const auto& [number, instance] : each->extent) {
                if (const auto key = IndexKey(instance->values[property], type, IdentityFunction())) {
                    position->second[*key].insert(number);
                }
            }
            examined += each->extent.size();
        });
    }
}

std::optional<std::vector<std::uint64_t>> Repository::State::Candidates(const ClassEntry& entry,
                                                                        const WqlCondition& condition) const {
    using Numbers = std::vector<std::uint64_t>;
    if (condition.kind == WqlCondition::Kind::And) {
        std::optional<Numbers> best;
        for (const WqlCondition& operand : condition.operands) {
            std::optional<Numbers> numbers = Candidates(entry, operand);
            if (numbers && (!best || numbers->size() < best->size())) {
                best = std::move(numbers);
            }
        }
        return best;
    }
    Numbers all;
    if (condition.kind == WqlCondition::Kind::Or) {
        for (const WqlCondition& operand : condition.operands) {
            const std::optional<Numbers> numbers = Candidates(entry, operand);
            if (!numbers) {
                return std::nullopt;
            }
            all.insert(all.end(), numbers->begin(), numbers->end());
        }
    } else {
        const std::optional<std::size_t> property = entry.definition->PropertyIndex(condition.property);
        if (!property) {
            return std::nullopt;
        }
        const auto index = entry.indexes.find(*property);
        const auto keys =
            IndexKeys(condition, entry.definition->properties[*property].type, IdentityFunction());
        if (index == entry.indexes.end() || !keys) {
            return std::nullopt;
        }
        for (const std::wstring& key : *keys) {
            if (const auto found = index->second.find(key); found != index->second.end()) {
                all.insert(all.end(), found->second.begin(), found->second.end());
            }
        }
    }
    std::sort(all.begin(), all.end());
    all.erase(std::unique(all.begin(), all.end()), all.end());
    return all;
}

void Repository::State::Select(ClassEntry* entry, const WqlCondition& condition,
                               std::vector<Stored>& result) const {
    std::vector<ClassEntry*> entries;
    Collect(entry, entries);
    const ObjectIdentity identity = IdentityFunction();
    for (ClassEntry* each : entries) {
        const auto consider = [&](std::uint64_t number, const InstancePtr& instance) {
            if (Matches(condition, *instance, identity)) {
                result.push_back({each, number, instance});
            }
        };
        if (const auto candidates = Candidates(*each, condition)) {
            for (const std::uint64_t number : *candidates) {
                consider(number, each->extent.at(number));
            }
            examined += candidates->size();
        } else {
            for (const auto& [number, instance] : each->extent) {
                consider(number, instance);
            }
            examined += each->extent.size();
        }
    }
    std::sort(result.begin(), result.end(),
              [](const Stored& left, const Stored& right) { return left.number < right.number; });
}

HRESULT Repository::State::Associations(const WqlQuery& query, std::vector<InstancePtr>& result) const {
    const std::optional<ObjectPath> path = ObjectPath::Parse(query.objectPath);
    if (!path || path->IsClass()) {
        return Code(WBEM_E_INVALID_OBJECT_PATH);
    }
    for (const std::wstring* name : {&query.resultClass, &query.assocClass}) {
        if (!name->empty() && FindEntry(*name) == nullptr) {
            return Code(WBEM_E_INVALID_CLASS);
        }
    }
    const Stored* source = Find(*path);
    if (source == nullptr) {
        return Code(WBEM_E_NOT_FOUND);
    }
    const auto allows = [](const std::wstring& wanted, std::wstring_view name) {
        return wanted.empty() || SameName(wanted, name);
    };
    const auto isA = [](const std::wstring& wanted, const ClassDefinition& definition) {
        return wanted.empty() || definition.IsA(wanted);
    };
    const auto qualified = [](const std::wstring& wanted, const ClassDefinition& definition) {
        return wanted.empty() || definition.qualifiers.Find(wanted) != nullptr;
    };
    std::set<const void*> seen;
    const auto add = [&](const InstancePtr& instance) {
        const ClassDefinition& definition = *instance->definition;
        const void* unit = query.classDefsOnly ? static_cast<const void*>(&definition) : instance.get();
        if (isA(query.resultClass, definition) && qualified(query.requiredQualifier, definition) &&
            seen.insert(unit).second) {
            result.push_back(instance);
        }
    };
    std::wstring reason;
    const auto found = referrers.find(*CanonicalPath(*source->instance, *source->entry, reason));
    if (found == referrers.end()) {
        return 0;
    }
    examined += found->second.size();
    for (const auto& [place, association] : found->second) {
        const ClassDefinition& definition = *association->definition;
        if (!allows(query.role, definition.properties[place.second].name)) {
            continue;
        }
        if (query.kind == WqlQuery::Kind::References) {
            add(association);
            continue;
        }
        if (!isA(query.assocClass, definition) || !qualified(query.requiredAssocQualifier, definition)) {
            continue;
        }
        for (const std::size_t index : FindEntry(definition.name)->references) {
            const Scalar* target = association->values[index].AsScalar();
            if (index == place.second || target == nullptr ||
                !allows(query.resultRole, definition.properties[index].name)) {
                continue;
            }
            const auto object = instances.find(Identity(std::get<std::wstring>(*target)));
            if (object != instances.end()) {
                add(object->second.instance);
            }
        }
    }
    return 0;
}

} // namespace quillet::simulator
