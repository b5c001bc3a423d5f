// The inside of the repository: classes, extents and indexes. The caller holds the lock.
#pragma once

#include <quillet-wmi/ReadMostlyMutex.h>
#include <quillet-wmi/Text.h>
#include <quillet-wmi/WqlMatch.h>

#include <quillet-simulator/Repository.h>

#include <atomic>
#include <map>
#include <mutex>
#include <set>
#include <unordered_map>

namespace quillet::simulator {

constexpr HRESULT Code(WBEMSTATUS status) noexcept {
    return static_cast<HRESULT>(status);
}

/// Names without regard to case, as keys of tables that are asked with any kind of text.
struct NameHash {
    using is_transparent = void;
    std::size_t operator()(std::wstring_view name) const noexcept {
        std::uint64_t hash = 0xCBF29CE484222325; // FNV-1a
        for (const wchar_t character : name) {
            hash = (hash ^ static_cast<std::uint32_t>(FoldCase(character))) * 0x100000001B3;
        }
        return static_cast<std::size_t>(hash ^ (hash >> 32));
    }
};
struct NameEqual {
    using is_transparent = void;
    bool operator()(std::wstring_view left, std::wstring_view right) const noexcept {
        return SameName(left, right);
    }
};

/// Where the instances with a certain value of a property are, by their creation numbers.
using PropertyIndex = std::unordered_map<std::wstring, std::set<std::uint64_t>>;

/// A class with its instances.
struct ClassEntry {
    ClassPtr definition;
    ClassEntry* superclass = nullptr;
    std::vector<ClassEntry*> subclasses;
    /// The folded name of the class that introduced the keys: instances of all classes below it share one
    /// space of keys.
    std::wstring family;
    std::vector<std::size_t> keys;       ///< key properties
    std::vector<std::size_t> references; ///< reference properties of an association; else none
    bool singleton = false;
    bool abstract = false;
    std::map<std::uint64_t, InstancePtr> extent;  ///< by creation number; not those of subclasses
    std::map<std::size_t, PropertyIndex> indexes; ///< by property, made when a query first asks
};

/// An instance and where it is.
struct Stored {
    ClassEntry* entry = nullptr;
    std::uint64_t number = 0;
    InstancePtr instance;
};

struct Repository::State {
    State(std::wstring server, std::wstring nameSpace);
    /// The caller holds the prototype's lock.
    State(const State& prototype);

    mutable ReadMostlyMutex mutex;
    /// In no path that is kept: see Rename().
    std::wstring serverName;
    const std::wstring namespaceName;
    std::atomic<std::uint64_t> generation{0};

    std::unordered_map<std::wstring, std::unique_ptr<ClassEntry>, NameHash, NameEqual> classes;
    std::vector<ClassEntry*> classOrder;
    std::map<std::wstring, QualifierDeclaration, NameLess> qualifiers;
    std::unordered_map<std::wstring, Stored> instances; ///< by canonical path
    /// The associations that refer to an object: by its canonical path, then creation number and property.
    using Referrers = std::map<std::pair<std::uint64_t, std::size_t>, InstancePtr>;
    std::unordered_map<std::wstring, Referrers> referrers;
    /// Classes that stored paths name and that do not exist (yet). Their coming changes what such a path
    /// means.
    std::set<std::wstring> unknownClasses;
    std::uint64_t nextNumber = 1;
    using ListPtr = std::shared_ptr<const std::vector<InstancePtr>>;
    /// Lists that were asked for: whoever makes one of his own changes the counts of all instances in it, and
    /// threads that enumerate the same class would wait for these counts.
    mutable std::map<std::pair<const ClassEntry*, bool>, ListPtr> lists;
    mutable std::mutex listsMutex;
    /// Every query writes it: away from what every call reads.
    mutable std::atomic<std::uint64_t> examined{0};

    ClassEntry* FindEntry(std::wstring_view name) const;
    HRESULT AddClass(ClassDefinition definition, std::wstring& reason);
    HRESULT StoreInstance(Instance& instance, WriteMode mode, InstancePtr& kept, std::wstring& reason);
    bool DeleteInstance(const ObjectPath& path);
    const Stored* Find(const ObjectPath& path) const;

    /// The entry and all below it, a class before its subclasses.
    static void Collect(ClassEntry* entry, std::vector<ClassEntry*>& result);
    std::vector<InstancePtr> Instances(ClassEntry* entry, bool shallow) const;
    ListPtr InstanceList(ClassEntry* entry, bool shallow) const;

    /// The same text for all paths of one object of this namespace; texts that are no such path stand for
    /// themselves. Names of unknown classes are noted in `unknown`.
    std::wstring Identity(std::wstring_view path, std::set<std::wstring>* unknown = nullptr,
                          unsigned depth = 0) const;
    ObjectIdentity IdentityFunction() const;

    bool QueryFits(const ClassDefinition& definition, const WqlQuery& query) const;
    /// Whether a query would use an index that does not exist yet.
    bool NeedsIndexes(ClassEntry* entry, const WqlCondition& condition) const;
    void MakeIndexes(ClassEntry* entry, const WqlCondition& condition);
    void Select(ClassEntry* entry, const WqlCondition& condition, std::vector<Stored>& result) const;
    HRESULT Associations(const WqlQuery& query, std::vector<InstancePtr>& result) const;

  private:
    /// Something is no longer as it was.
    void Changed();
    std::optional<std::wstring> CanonicalPath(const ObjectPath& path, const ClassEntry& entry,
                                              std::set<std::wstring>* unknown, unsigned depth) const;
    std::optional<std::wstring> CanonicalPath(const Instance& instance, const ClassEntry& entry,
                                              std::wstring& reason) const;
    void AppendKey(std::wstring& canonical, CIMTYPE type, const Scalar& value,
                   std::set<std::wstring>* unknown, unsigned depth) const;
    HRESULT CheckValues(Instance& instance, std::wstring& reason) const;
    void NoteUnknownClasses(const Stored& stored);
    void Link(const Stored& stored);
    void Unlink(const Stored& stored);
    void Rebuild();
    std::optional<std::vector<std::uint64_t>> Candidates(const ClassEntry& entry,
                                                         const WqlCondition& condition) const;
    template <class Visitor>
    void VisitIndexable(const ClassEntry& entry, const WqlCondition& condition, Visitor visitor) const;
};

} // namespace quillet::simulator
