// What the provider answers to each call: from the repository, and from the class providers.
#pragma once

#include "providers/ClassProvider.h"

#include <quillet-wmi/Connection.h>

namespace quillet::simulator {

/// The calls of one machine. Faults and the journal are the caller's business.
class Dispatcher {
  public:
    explicit Dispatcher(Machine& machine) : m_machine(machine) {}

    /// The class or the instance that a path names.
    HRESULT GetObject(std::wstring_view path, Object& found) const;
    HRESULT InstancesOf(std::wstring_view className, Depth depth, std::vector<Object>& found) const;
    /// The classes below a class (an empty name: all), or only those directly below it.
    HRESULT ClassesBelow(std::wstring_view superclass, Depth depth, std::vector<Object>& found) const;
    HRESULT Query(std::wstring_view text, std::vector<Object>& found) const;

    /// @param in  the in-parameters as the client filled them; null when it passed none
    /// @param out the out-parameters; null when the method has none
    HRESULT ExecMethod(Request& request, std::wstring_view path, std::wstring_view method, const Instance* in,
                       InstancePtr& out) const;
    HRESULT PutInstance(Request& request, const Instance& instance, WriteMode mode) const;
    HRESULT DeleteInstance(Request& request, std::wstring_view path) const;

  private:
    HRESULT ParsePath(std::wstring_view text, ObjectPath& path) const;

    Machine& m_machine;
};

} // namespace quillet::simulator
