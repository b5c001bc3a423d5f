// One request: what it asks the machine, and the body of its answer.
#pragma once

#include "server/Service.h"
#include "soap/Values.h"

#include <string>
#include <vector>

namespace quillet::wsman {

/// Ends a request with a fault.
struct Failed {
    Fault fault;
};
[[noreturn]] void Fail(HRESULT code, const std::string& reason = {});
[[noreturn]] void Fail(const char* subcode, const std::string& reason, const char* detail = "");

/// One request, from its head to its answer.
class Request {
  public:
    Request(Service& service, const Element& envelope, const RequestHead& head, const std::string& user);

    /// The body of the answer. Throws Failed, MessageError.
    std::string Answer();

  private:
    static void Succeed(const wmi::Outcome& outcome);
    wmi::ObjectPath Path() const;
    /// Of a request for classes, whose resource names none.
    void CheckNamespace() const;
    /// The path of an instance: a class without keys is asked for its only one.
    wmi::ObjectPath InstancePath() const;
    wmi::ClassPtr ClassOfRequest() const;

    std::string GetClass();
    std::string Get();
    /// Of another namespace the one thing that clients need: the machine's name for itself.
    std::string Name() const;
    std::string Put();
    std::string Create();
    std::string Invoke();
    void WriteInstance(XmlWriter& xml, const wmi::Object& object) const;
    /// The element of an instance in the body, read into its class; `puts` gets what the client changed.
    wmi::Instance ReadInstance(const wmi::ClassPtr& definition, std::vector<wmi::NamedValue>& puts) const;
    void ReadParameters(const wmi::Method& method, wmi::Instance& in,
                        std::vector<wmi::NamedValue>& puts) const;

    std::string Enumerate();
    std::string Pull();
    void Release();
    void Query(const Element& filter, Enumeration& begun);
    /// A class and, where they are asked for, those below it; without a name all classes.
    std::unique_ptr<wmi::ObjectStream> Classes();
    std::unique_ptr<Enumeration> TakeEnumeration(const Element& asked);
    /// An enumeration that is not at its end goes on under a new identifier.
    void WriteContext(XmlWriter& xml, Enumeration enumeration, bool isEnd);
    /// As many objects as are asked for and fit.
    std::string Items(Enumeration& enumeration, std::size_t most, bool& isEnd);
    /// How many a client asks for in "MaxElements".
    std::size_t MostItems(const Element& wanted) const;
    void WriteItem(XmlWriter& xml, const Enumeration& enumeration) const;

    Service& m_service;
    wmi::Connection& m_connection;
    const RequestHead& m_head;
    const Element m_body;
    const std::string& m_user;
    wmi::CallContext m_context;
    wmi::Value::Array m_modified; ///< the properties that the client changed, where it says so
    Namespace m_space;
    NullArrays m_arrays; ///< as the client wants and writes them
};

} // namespace quillet::wsman
