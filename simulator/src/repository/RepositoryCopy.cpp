// A second repository with the content of a first.
#include "repository/RepositoryState.h"

namespace quillet::simulator {

Repository::Repository(const Repository& prototype) {
    const std::shared_lock lock(prototype.m_state->mutex);
    m_state = std::make_unique<State>(*prototype.m_state);
}

Repository::State::State(const State& prototype)
    : serverName(prototype.serverName), namespaceName(prototype.namespaceName),
      generation(prototype.generation.load()), qualifiers(prototype.qualifiers),
      referrers(prototype.referrers), unknownClasses(prototype.unknownClasses),
      nextNumber(prototype.nextNumber) {
    std::unordered_map<const ClassEntry*, ClassEntry*> copies;
    for (const auto& [name, entry] : prototype.classes) {
        auto copy = std::make_unique<ClassEntry>(*entry);
        copies.emplace(entry.get(), copy.get());
        classes.emplace(name, std::move(copy));
    }
    const auto copyOf = [&copies](const ClassEntry* entry) {
        return entry != nullptr ? copies.at(entry) : nullptr;
    };
    for (const auto& [name, entry] : classes) {
        entry->superclass = copyOf(entry->superclass);
        for (auto& subclass : entry->subclasses) {
            subclass = copyOf(subclass);
        }
    }
    classOrder.reserve(prototype.classOrder.size());
    for (const ClassEntry* entry : prototype.classOrder) {
        classOrder.push_back(copyOf(entry));
    }
    instances = prototype.instances;
    for (auto& [path, stored] : instances) {
        stored.entry = copyOf(stored.entry);
    }
}

} // namespace quillet::simulator
