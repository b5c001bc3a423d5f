// Aliases, and the instances that wait for what they refer to.
#include "language/MofUnit.h"

#include <quillet-wmi/ObjectPath.h>
#include <quillet-wmi/Text.h>

#include <algorithm>

namespace quillet::wmi {

void MofUnit::Store(Instance instance, const MofPlace& place) {
    if (check) {
        try {
            check(instance);
        } catch (const std::invalid_argument& refused) {
            RefuseSecond(instance, place);
            place.Fail(FromUtf8(refused.what()).value_or(L"it cannot be used"));
        }
    }
    // Nearly every instance is new: what else there may be is looked at only when this one is not taken.
    InstancePtr kept;
    if (target.StoreInstance(instance, WriteMode::CreateOnly, kept, nullptr) != 0) {
        RefuseSecond(instance, place);
        std::wstring reason;
        if (target.StoreInstance(instance, WriteMode::CreateOrUpdate, kept, &reason) != 0) {
            place.Fail(L"instance of " + Quoted(instance.definition->name) + L": " + reason);
        }
    }
    stored.insert(std::move(kept));
}

void MofUnit::RefuseSecond(const Instance& instance, const MofPlace& place) const {
    // A text may bring anew what an earlier one stored, but not say two things about one object.
    const std::wstring path = RelativePath(instance);
    const InstancePtr present = target.FindInstance(path);
    if (present && stored.find(present) != stored.end()) {
        place.Fail(L"duplicate key: " + path + L" is there already");
    }
}

bool MofUnit::Resolve(Waiting& entry) {
    const std::vector<Property>& properties = entry.instance.definition->properties;
    const auto replace = [&](const AliasUse& use) {
        const auto found = aliases.find(use.alias);
        if (found == aliases.end() || !found->second.path) {
            return false;
        }
        const Property& property = properties[use.property];
        if (!property.referenceClass.empty() && !found->second.definition->IsA(property.referenceClass)) {
            use.place.Fail(L"'$" + use.alias + L"' is a " + found->second.definition->name +
                           L", but property " + Quoted(property.name) + L" refers to a " +
                           property.referenceClass);
        }
        entry.instance.values[use.property] = Value::Text(*found->second.path);
        return true;
    };
    std::erase_if(entry.uses, replace);
    const bool keysKnown = std::none_of(entry.uses.begin(), entry.uses.end(), [&](const AliasUse& use) {
        return properties[use.property].IsKey();
    });
    // The keys alone make the path, so instances may refer to each other, and one to itself.
    if (keysKnown && !entry.alias.empty() && !aliases[entry.alias].path) {
        aliases[entry.alias].path = RelativePath(entry.instance);
        std::erase_if(entry.uses, replace);
    }
    return entry.uses.empty();
}

void MofUnit::Finish() {
    for (const ClassUse& use : referencedClasses) {
        if (!target.FindClass(use.name)) {
            use.place.Fail(L"unknown class " + Quoted(use.name));
        }
    }
    while (!waiting.empty()) {
        const std::size_t before = waiting.size();
        std::vector<Waiting> left;
        for (Waiting& entry : waiting) {
            if (Resolve(entry)) {
                Store(std::move(entry.instance), entry.place);
            } else {
                left.push_back(std::move(entry));
            }
        }
        waiting = std::move(left);
        if (waiting.size() == before) {
            const AliasUse& use = waiting.front().uses.front();
            use.place.Fail(aliases.find(use.alias) == aliases.end()
                               ? L"unknown alias '$" + use.alias + L"'"
                               : L"alias '$" + use.alias + L"' needs itself to be resolved");
        }
    }
}

} // namespace quillet::wmi
