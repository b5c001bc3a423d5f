// What a machine must answer so that the COM objects of wmi/com can stand in front of it.
#pragma once

#include <quillet-wmi/Model.h>

#include <span>

namespace quillet::wmi {

class CallObserver;

/// WBEM_INFINITE as the timeouts are passed.
inline constexpr LONG kInfiniteTimeout = static_cast<LONG>(WBEM_INFINITE);

/// One named value of a call: an in-parameter, a property that was put, or a value of the context.
struct NamedValue {
    std::wstring name;     ///< as the schema has it
    VARTYPE vt = VT_EMPTY; ///< the VARIANT type that the client put
    CIMTYPE type = 0;      ///< the CIM type of the parameter or property
    Value value;           ///< what it is
};

/// The value of that name, without regard to case; null when there is none.
const NamedValue* FindNamed(const std::vector<NamedValue>& values, std::wstring_view name) noexcept;

/// What travels with a call besides its arguments.
struct CallContext {
    LONG flags = 0;                 ///< WBEM_FLAG_… as the client gave them
    bool hasContext = false;        ///< whether the client passed an IWbemContext at all
    std::vector<NamedValue> values; ///< the context's values at the time of the call, by name
    LCID locale = 0;                ///< the client's language; 0: the texts as the schema has them
    bool callResult = false;        ///< the client asked for a call result

    /// Whether the client does not wait for the end of the call.
    bool Semisynchronous() const noexcept { return (flags & WBEM_FLAG_RETURN_IMMEDIATELY) != 0; }
};

/// How a call ended, and when its client is told.
struct Outcome {
    /// When the status is told.
    enum class Told {
        Usually,      ///< at once; to a semisynchronous client through its call result
        AtOnce,       ///< the call was not begun, so even a semisynchronous one fails itself
        ByCallResult, ///< through its call result to every client that asked for one
    };

    HRESULT status = S_OK;     ///< how it ended
    Told told = Told::Usually; ///< when that is told
    bool withheld = false;     ///< nothing is handed out, whatever the status: no object and no call result

    Outcome() = default;
    /// The usual end of a call.
    Outcome(HRESULT ended) : status(ended) {}
    /// Of a call that was not begun.
    static Outcome NotBegun(HRESULT status) {
        Outcome outcome(status);
        outcome.told = Told::AtOnce;
        return outcome;
    }

    /// What the call itself returns to its client.
    HRESULT Returned(const CallContext& context) const noexcept;
};

/// A class, or an instance of it. Immutable and shared with whoever keeps it.
struct Object {
    ClassPtr definition;  ///< null: no object at all
    InstancePtr instance; ///< null: the class itself
};

/// Objects one after the other. A stream does not outlive its connection, and is used by one thread at a
/// time.
class ObjectStream {
  public:
    ObjectStream() = default;
    virtual ~ObjectStream() = default;
    ObjectStream(const ObjectStream&) = delete;
    ObjectStream& operator=(const ObjectStream&) = delete;

    /// Fills as many of `objects` as are left, and says how many. WBEM_S_NO_ERROR when all are filled,
    /// WBEM_S_FALSE at the end, WBEM_S_TIMEDOUT when they did not come within `timeout` milliseconds
    /// (WBEM_INFINITE: however long it takes); WBEM_E_INVALID_PARAMETER for another timeout below 0 or
    /// nothing to fill.
    virtual HRESULT Next(LONG timeout, std::span<Object> objects, ULONG& returned) = 0;
    /// Passes over some objects. WBEM_S_FALSE when there are not so many.
    virtual HRESULT Skip(LONG timeout, ULONG count);
    /// Goes back to the first object; WBEM_E_INVALID_OPERATION when it cannot.
    virtual HRESULT Reset();
    /// A second stream that goes on from here; null when there cannot be one.
    virtual std::unique_ptr<ObjectStream> Clone() const;
};

/// A stream of objects that are there already.
std::unique_ptr<ObjectStream> MakeStream(std::vector<Object> objects);

/// An object as a client hands it over.
struct Filled {
    const Instance& values;              ///< all its values
    const std::vector<NamedValue>& puts; ///< what the client put, in order
};

/// Whether subclasses count.
enum class Depth { Deep, Shallow };

/// One namespace of one machine, wherever it is. Every call of a client that reaches the provider goes
/// through here. Safe for many threads. The arguments have been checked as far as COM's own rules go; texts
/// are what the client wrote. An object that is handed out must not change any more.
class Connection {
  public:
    Connection() = default;
    virtual ~Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    virtual const std::wstring& ServerName() const noexcept = 0;    ///< the __SERVER of every object
    virtual const std::wstring& NamespaceName() const noexcept = 0; ///< the __NAMESPACE of every object

    /// Opens another namespace. WBEM_E_INVALID_NAMESPACE unless the connection says otherwise.
    virtual Outcome OpenNamespace(const CallContext& context, std::wstring_view path,
                                  std::shared_ptr<Connection>& opened);
    /// The class or the instance that a path names.
    virtual Outcome GetObject(const CallContext& context, std::wstring_view path, Object& found) = 0;
    /// The instances of a class.
    virtual Outcome Instances(const CallContext& context, std::wstring_view className, Depth depth,
                              std::unique_ptr<ObjectStream>& found) = 0;
    /// The classes below a class; below none: all, or those without a superclass.
    virtual Outcome Classes(const CallContext& context, std::wstring_view superclass, Depth depth,
                            std::unique_ptr<ObjectStream>& found) = 0;
    /// What a query in WQL finds.
    virtual Outcome Query(const CallContext& context, std::wstring_view wql,
                          std::unique_ptr<ObjectStream>& found) = 0;
    /// Calls a method of the class or the instance that a path names.
    /// @param in  the in-parameters (see InSignature); null when the client passed none
    /// @param out the out-parameters (see OutSignature); null when there are none
    virtual Outcome ExecMethod(const CallContext& context, std::wstring_view path, std::wstring_view method,
                               const Filled* in, InstancePtr& out) = 0;
    /// Writes an instance.
    virtual Outcome PutInstance(const CallContext& context, const Filled& instance, WriteMode mode) = 0;
    /// Removes an instance.
    virtual Outcome DeleteInstance(const CallContext& context, std::wstring_view path) = 0;

    /// The text of a reference as clients see it, which can be compared with a __PATH: with server and
    /// namespace.
    virtual std::wstring WholePath(std::wstring_view reference) const;
    /// Who watches the calls that stay with the client's objects; null: nobody. It lives as long as the
    /// connection.
    virtual CallObserver* Observer() noexcept { return nullptr; }
};

/// A relative path behind the server and the namespace of a connection.
std::wstring FullPathOf(const Connection& connection, std::wstring_view relative);

/// What IWbemLocator::ConnectServer is told. What the client left out is nothing.
struct ConnectArguments {
    std::wstring_view resource;                 ///< "\\server\namespace" or "namespace"
    std::optional<std::wstring_view> user;      ///< the account
    std::optional<std::wstring_view> password;  ///< its password
    std::optional<std::wstring_view> locale;    ///< "MS_407" and so on
    std::optional<std::wstring_view> authority; ///< "Kerberos:…" and so on

    /// Everything but the resource by name, with *** for the password.
    std::vector<NamedValue> Named() const;
};

/// Where connections come from: one machine, or the way to many.
class Host {
  public:
    Host() = default;
    virtual ~Host() = default;
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    /// Connects to a namespace. WBEM_E_INVALID_NAMESPACE when there is no such one.
    virtual Outcome Connect(const CallContext& context, const ConnectArguments& arguments,
                            std::shared_ptr<Connection>& connection) = 0;
    /// See Connection::Observer; asked by what belongs to no connection. It lives as long as the host.
    virtual CallObserver* Observer() noexcept { return nullptr; }
};

/// Whether a namespace path, absolute with or without a server, names a namespace.
bool NamesNamespace(std::wstring_view path, std::wstring_view namespaceName);

} // namespace quillet::wmi
