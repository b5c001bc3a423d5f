// The store of classes and instances. Safe for many threads: what it hands out is immutable,
// a change replaces it.
#pragma once

#include <quillet-wmi/Mof.h>
#include <quillet-wmi/ObjectPath.h>
#include <quillet-wmi/Wql.h>

#include <functional>

namespace quillet::simulator {

// A machine is described in WMI's own words.
using namespace wmi;

/// Classes, and instances by their keys, by what they refer to, and by WQL.
class Repository : public MofTarget {
  public:
    /// An empty repository. The names stand in the paths of its objects.
    Repository(std::wstring serverName, std::wstring namespaceName);
    /// A repository with the same names and content, which changes on its own from then on. Classes and
    /// instances are shared, so this costs a small part of compiling them again.
    Repository(const Repository& prototype);
    /// Takes over what the other has, which then can only go.
    Repository(Repository&& other) noexcept;
    ~Repository() override;
    Repository& operator=(const Repository&) = delete;

    const std::wstring& ServerName() const noexcept; ///< the __SERVER of every object
    /// Gives all objects another __SERVER. Only for whoever still has the repository to himself.
    void Rename(std::wstring serverName);
    const std::wstring& NamespaceName() const noexcept; ///< "ROOT\MarloLUM2"

    /// Adds a class (its own properties, methods and qualifiers only; what it inherits is merged in).
    /// WBEM_E_INVALID_SUPERCLASS, WBEM_E_ALREADY_EXISTS or WBEM_E_INVALID_CLASS when it cannot be taken;
    /// the reason in words, if asked for.
    HRESULT AddClass(ClassDefinition definition, std::wstring* reason = nullptr) override;
    /// The class of that name; null when there is none.
    ClassPtr FindClass(std::wstring_view name) const override;
    /// All classes in the order they were added.
    std::vector<ClassPtr> Classes() const;
    /// The class itself and all classes below it.
    std::vector<ClassPtr> ClassAndSubclasses(std::wstring_view name) const;

    /// Stores an instance under its keys. Checks that key values are there, that every value fits its
    /// CIM type and that references are object paths. WBEM_E_ALREADY_EXISTS (also when an instance of
    /// another class of the family has the keys), WBEM_E_NOT_FOUND, WBEM_E_INVALID_OBJECT,
    /// WBEM_E_TYPE_MISMATCH; the reason in words, if asked for.
    HRESULT PutInstance(Instance instance, WriteMode mode = WriteMode::CreateOrUpdate,
                        std::wstring* reason = nullptr);
    /// The same; one that is not taken has the values that it had, and `kept` is one that is.
    HRESULT StoreInstance(Instance& instance, WriteMode mode, InstancePtr& kept,
                          std::wstring* reason) override;
    /// Removes an instance; WBEM_E_NOT_FOUND when there is none. Associations that refer to it stay, and
    /// lead nowhere.
    HRESULT DeleteInstance(const ObjectPath& path);

    /// The instance a path names, whatever the order and spelling of its keys; null when there is none.
    /// A path may name a superclass of the instance's class.
    InstancePtr FindInstance(const ObjectPath& path) const;
    /// The same for the text of a path; null for what is none.
    InstancePtr FindInstance(std::wstring_view path) const override;
    /// The instances of a class, and of its subclasses unless shallow, in order of creation.
    std::vector<InstancePtr> Instances(std::wstring_view className, bool shallow = false) const;
    /// The same as one list that is shared by all who ask, until anything changes.
    std::shared_ptr<const std::vector<InstancePtr>> InstanceList(std::wstring_view className,
                                                                 bool shallow = false) const;
    /// All instances, in order of creation.
    std::vector<InstancePtr> AllInstances() const;

    /// Runs a SELECT. WBEM_E_INVALID_CLASS when the class is unknown, WBEM_E_INVALID_QUERY when it names a
    /// property that the class does not have (system properties apart).
    HRESULT Select(const WqlQuery& query, std::vector<InstancePtr>& result) const;
    /// Runs ASSOCIATORS OF or REFERENCES OF over the association index.
    /// WBEM_E_INVALID_OBJECT_PATH or WBEM_E_NOT_FOUND for the object in braces, WBEM_E_INVALID_CLASS for a
    /// class that does not exist. With ClassDefsOnly, one instance stands for each class of the result.
    HRESULT Associations(const WqlQuery& query, std::vector<InstancePtr>& result) const;

    /// The path of an instance behind this server and namespace.
    std::wstring FullPath(const Instance& instance) const;
    /// The text of a reference as clients see it: the full path of the object that it names or, when there is
    /// no such object, the text itself with this server and namespace in front where it has none.
    std::wstring ReferenceText(std::wstring_view path) const;
    /// Whether two path texts name the same object of this repository, whatever their form. The server
    /// name is not looked at: a machine that was saved under one computer's name lives on under another.
    bool SameObject(std::wstring_view left, std::wstring_view right) const;

    /// A number that grows with every change.
    std::uint64_t Generation() const noexcept;
    /// How many instances queries have looked at so far. What an index serves looks at little more than
    /// it answers; a test can tell it from a scan by this number.
    std::uint64_t Examined() const noexcept;

    /// Declares a qualifier, or declares it anew. WBEM_E_TYPE_MISMATCH when it is there with another type.
    HRESULT DeclareQualifier(QualifierDeclaration declaration) override;
    /// The declaration of a qualifier; nothing when there is none.
    std::optional<QualifierDeclaration> FindQualifierDeclaration(std::wstring_view name) const override;
    /// All declarations, by name.
    std::vector<QualifierDeclaration> QualifierDeclarations() const;

  private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace quillet::simulator
