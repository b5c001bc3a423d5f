// SELECT in the repository, and the indexes that make it quick.
#include "repository/RepositoryState.h"

#include <algorithm>

namespace quillet::simulator {

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

} // namespace quillet::simulator
