// The store of classes and instances. Safe for many threads: what it hands out is immutable,
// a change replaces it.
#pragma once

#include <quillet-simulator/Model.h>
#include <quillet-simulator/ObjectPath.h>
#include <quillet-simulator/Wql.h>

#include <functional>

namespace quillet::simulator {

class Repository {
  public:
    Repository(std::wstring serverName, std::wstring namespaceName);
    ~Repository();
    Repository(const Repository&) = delete;
    Repository& operator=(const Repository&) = delete;

    const std::wstring& ServerName() const noexcept;    ///< the __SERVER of every object
    const std::wstring& NamespaceName() const noexcept; ///< "ROOT\MarloLUM2"

    /// Adds a class (its own properties, methods and qualifiers only; what it inherits is merged in).
    /// WBEM_E_INVALID_SUPERCLASS, WBEM_E_ALREADY_EXISTS or WBEM_E_INVALID_CLASS when it cannot be taken.
    HRESULT AddClass(ClassDefinition definition);
    ClassPtr FindClass(std::wstring_view name) const;
    /// All classes in the order they were added.
    std::vector<ClassPtr> Classes() const;
    /// The class itself and all classes below it.
    std::vector<ClassPtr> ClassAndSubclasses(std::wstring_view name) const;

    /// How a write treats an instance that is (not) there yet.
    enum class Write { CreateOrUpdate, CreateOnly, UpdateOnly };
    /// Stores an instance under its keys. Checks that key values are there and that every value fits its
    /// CIM type. WBEM_E_ALREADY_EXISTS, WBEM_E_NOT_FOUND, WBEM_E_INVALID_OBJECT, WBEM_E_TYPE_MISMATCH.
    HRESULT PutInstance(Instance instance, Write mode = Write::CreateOrUpdate);
    /// Removes an instance; WBEM_E_NOT_FOUND when there is none.
    HRESULT DeleteInstance(const ObjectPath& path);

    /// The instance a path names, whatever the order and spelling of its keys; null when there is none.
    InstancePtr FindInstance(const ObjectPath& path) const;
    InstancePtr FindInstance(std::wstring_view path) const;
    /// The instances of a class, and of its subclasses unless shallow, in order of creation.
    std::vector<InstancePtr> Instances(std::wstring_view className, bool shallow = false) const;
    std::vector<InstancePtr> AllInstances() const;

    /// Runs a SELECT. WBEM_E_INVALID_CLASS when the class is unknown.
    HRESULT Select(const WqlQuery& query, std::vector<InstancePtr>& result) const;
    /// Runs ASSOCIATORS OF or REFERENCES OF over the association index.
    /// WBEM_E_INVALID_OBJECT_PATH or WBEM_E_NOT_FOUND for the object in braces.
    HRESULT Associations(const WqlQuery& query, std::vector<InstancePtr>& result) const;

    /// Class.Key="value",… of an instance, keys in the order of the class.
    std::wstring RelativePath(const Instance& instance) const;
    /// \\server\namespace:Class.Key="value",…
    std::wstring FullPath(const Instance& instance) const;
    /// Whether two path texts name the same object, whatever their form.
    bool SameObject(std::wstring_view left, std::wstring_view right) const;

    /// A number that grows with every change.
    std::uint64_t Generation() const noexcept;

  private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace quillet::simulator
