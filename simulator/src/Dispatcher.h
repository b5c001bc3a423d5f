// What the provider answers to each call: from the repository, and from the class providers.
#pragma once

#include "ClassProvider.h"

namespace quillet::simulator {

/// A class, or an instance of it. Immutable and shared with the repository.
struct ProvidedObject {
    ClassPtr definition;
    InstancePtr instance; ///< null: the class itself
};

/// The in- or out-parameters of a method as a class named __PARAMETERS; null when it has none. The return
/// value is the last of the out-parameters.
ClassPtr InSignature(const Method& method);
ClassPtr OutSignature(const Method& method);

/// The calls of one machine. Faults and the journal are the caller's business.
class Dispatcher {
  public:
    explicit Dispatcher(Machine& machine) : m_machine(machine) {}

    /// The class or the instance that a path names.
    HRESULT GetObject(std::wstring_view path, ProvidedObject& found) const;
    HRESULT InstancesOf(std::wstring_view className, bool shallow, std::vector<ProvidedObject>& found) const;
    /// The classes below a class (an empty name: all), or only those directly below it.
    HRESULT ClassesBelow(std::wstring_view superclass, bool shallow,
                         std::vector<ProvidedObject>& found) const;
    HRESULT Query(std::wstring_view text, std::vector<ProvidedObject>& found) const;

    /// @param in  the in-parameters as the client filled them; null when it passed none
    /// @param out the out-parameters; null when the method has none
    HRESULT ExecMethod(Request& request, std::wstring_view path, std::wstring_view method, const Instance* in,
                       InstancePtr& out) const;
    HRESULT PutInstance(Request& request, const Instance& instance, Repository::Write mode) const;
    HRESULT DeleteInstance(Request& request, std::wstring_view path) const;

  private:
    HRESULT ParsePath(std::wstring_view text, ObjectPath& path) const;

    Machine& m_machine;
};

} // namespace quillet::simulator
