// ASSOCIATORS OF and REFERENCES OF in the repository.
#include "repository/RepositoryState.h"

namespace quillet::simulator {

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
