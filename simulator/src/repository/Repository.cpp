// The repository's interface: takes the lock, asks the state.
#include <quillet-simulator/Repository.h>

#include "repository/RepositoryState.h"

#include <quillet-wmi/Text.h>

#include <mutex>

namespace quillet::simulator {

namespace {

using Shared = std::shared_lock<ReadMostlyMutex>;
using Unique = std::unique_lock<ReadMostlyMutex>;

} // namespace

Repository::Repository(std::wstring serverName, std::wstring namespaceName)
    : m_state(std::make_unique<State>(std::move(serverName), std::move(namespaceName))) {}

Repository::Repository(Repository&& other) noexcept : m_state(std::move(other.m_state)) {}

Repository::~Repository() = default;

const std::wstring& Repository::ServerName() const noexcept {
    return m_state->serverName;
}

void Repository::Rename(std::wstring serverName) {
    m_state->serverName = std::move(serverName);
}

const std::wstring& Repository::NamespaceName() const noexcept {
    return m_state->namespaceName;
}

HRESULT Repository::AddClass(ClassDefinition definition, std::wstring* reason) {
    std::wstring ignored;
    const Unique lock(m_state->mutex);
    return m_state->AddClass(std::move(definition), reason != nullptr ? *reason : ignored);
}

ClassPtr Repository::FindClass(std::wstring_view name) const {
    const Shared lock(m_state->mutex);
    const ClassEntry* entry = m_state->FindEntry(name);
    return entry != nullptr ? entry->definition : nullptr;
}

std::vector<ClassPtr> Repository::Classes() const {
    const Shared lock(m_state->mutex);
    std::vector<ClassPtr> result;
    for (const ClassEntry* entry : m_state->classOrder) {
        result.push_back(entry->definition);
    }
    return result;
}

std::vector<ClassPtr> Repository::ClassAndSubclasses(std::wstring_view name) const {
    const Shared lock(m_state->mutex);
    std::vector<ClassEntry*> entries;
    State::Collect(m_state->FindEntry(name), entries);
    std::vector<ClassPtr> result;
    result.reserve(entries.size());
    for (const ClassEntry* entry : entries) {
        result.push_back(entry->definition);
    }
    return result;
}

HRESULT Repository::PutInstance(Instance instance, WriteMode mode, std::wstring* reason) {
    InstancePtr kept;
    return StoreInstance(instance, mode, kept, reason);
}

HRESULT Repository::StoreInstance(Instance& instance, WriteMode mode, InstancePtr& kept,
                                  std::wstring* reason) {
    std::wstring ignored;
    const Unique lock(m_state->mutex);
    return m_state->StoreInstance(instance, mode, kept, reason != nullptr ? *reason : ignored);
}

HRESULT Repository::DeleteInstance(const ObjectPath& path) {
    const Unique lock(m_state->mutex);
    return m_state->DeleteInstance(path) ? 0 : Code(WBEM_E_NOT_FOUND);
}

InstancePtr Repository::FindInstance(const ObjectPath& path) const {
    const Shared lock(m_state->mutex);
    const Stored* found = m_state->Find(path);
    return found != nullptr ? found->instance : nullptr;
}

InstancePtr Repository::FindInstance(std::wstring_view path) const {
    const std::optional<ObjectPath> parsed = ObjectPath::Parse(path);
    return parsed ? FindInstance(*parsed) : nullptr;
}

std::vector<InstancePtr> Repository::Instances(std::wstring_view className, bool shallow) const {
    const Shared lock(m_state->mutex);
    ClassEntry* entry = m_state->FindEntry(className);
    return entry != nullptr ? m_state->Instances(entry, shallow) : std::vector<InstancePtr>();
}

std::shared_ptr<const std::vector<InstancePtr>> Repository::InstanceList(std::wstring_view className,
                                                                         bool shallow) const {
    const Shared lock(m_state->mutex);
    ClassEntry* entry = m_state->FindEntry(className);
    return entry != nullptr ? m_state->InstanceList(entry, shallow)
                            : std::make_shared<const std::vector<InstancePtr>>();
}

std::vector<InstancePtr> Repository::AllInstances() const {
    const Shared lock(m_state->mutex);
    std::map<std::uint64_t, InstancePtr> all;
    for (const ClassEntry* entry : m_state->classOrder) {
        all.insert(entry->extent.begin(), entry->extent.end());
    }
    std::vector<InstancePtr> result;
    result.reserve(all.size());
    for (auto& [number, instance] : all) {
        result.push_back(std::move(instance));
    }
    return result;
}

HRESULT Repository::Select(const WqlQuery& query, std::vector<InstancePtr>& result) const {
    result.clear();
    Shared lock(m_state->mutex);
    ClassEntry* entry = m_state->FindEntry(query.className);
    if (entry == nullptr) {
        return Code(WBEM_E_INVALID_CLASS);
    }
    if (!m_state->QueryFits(*entry->definition, query)) {
        return Code(WBEM_E_INVALID_QUERY);
    }
    if (!query.where) {
        result = m_state->Instances(entry, false);
        return 0;
    }
    if (m_state->NeedsIndexes(entry, *query.where)) {
        // Classes are never removed, so the entry outlives the change of locks.
        lock.unlock();
        {
            const Unique exclusive(m_state->mutex);
            m_state->MakeIndexes(entry, *query.where);
        }
        lock.lock();
    }
    std::vector<Stored> found;
    m_state->Select(entry, *query.where, found);
    result.reserve(found.size());
    for (Stored& stored : found) {
        result.push_back(std::move(stored.instance));
    }
    return 0;
}

HRESULT Repository::Associations(const WqlQuery& query, std::vector<InstancePtr>& result) const {
    result.clear();
    const Shared lock(m_state->mutex);
    return m_state->Associations(query, result);
}

std::wstring Repository::FullPath(const Instance& instance) const {
    return wmi::FullPath(m_state->serverName, m_state->namespaceName, RelativePath(instance));
}

std::wstring Repository::ReferenceText(std::wstring_view path) const {
    const std::optional<ObjectPath> parsed = ObjectPath::Parse(path);
    if (!parsed) {
        return std::wstring(path);
    }
    {
        const Shared lock(m_state->mutex);
        const auto found = m_state->instances.find(m_state->Identity(path));
        if (found != m_state->instances.end()) {
            return FullPath(*found->second.instance);
        }
    }
    if (!parsed->server.empty()) {
        return std::wstring(path);
    }
    return parsed->Full(m_state->serverName,
                        parsed->namespacePath.empty() ? m_state->namespaceName : parsed->namespacePath);
}

bool Repository::SameObject(std::wstring_view left, std::wstring_view right) const {
    const Shared lock(m_state->mutex);
    return m_state->Identity(left) == m_state->Identity(right);
}

std::uint64_t Repository::Generation() const noexcept {
    return m_state->generation;
}

std::uint64_t Repository::Examined() const noexcept {
    return m_state->examined;
}

HRESULT Repository::DeclareQualifier(QualifierDeclaration declaration) {
    const Unique lock(m_state->mutex);
    const auto present = m_state->qualifiers.find(declaration.name);
    if (present != m_state->qualifiers.end() && present->second.type != declaration.type) {
        return Code(WBEM_E_TYPE_MISMATCH);
    }
    std::wstring name = declaration.name;
    m_state->qualifiers.insert_or_assign(std::move(name), std::move(declaration));
    return 0;
}

std::optional<QualifierDeclaration> Repository::FindQualifierDeclaration(std::wstring_view name) const {
    const Shared lock(m_state->mutex);
    const auto found = m_state->qualifiers.find(name);
    return found != m_state->qualifiers.end() ? std::optional(found->second) : std::nullopt;
}

std::vector<QualifierDeclaration> Repository::QualifierDeclarations() const {
    const Shared lock(m_state->mutex);
    std::vector<QualifierDeclaration> result;
    for (const auto& [name, declaration] : m_state->qualifiers) {
        result.push_back(declaration);
    }
    return result;
}

} // namespace quillet::simulator
