// A session that can be closed while others use it, and how Python reaches its operations.
#pragma once

#include "Given.h"
#include "Threads.h"

#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <utility>

namespace quillet::wmi {
class Host;
}

namespace quillet::python {

/// One machine. Python's threads may share it; an operation that runs while another thread closes it ends
/// first.
class Connection {
  public:
    /// Connects to a machine behind a host.
    /// @param isRemote whether it is asked over the network, which knows better why it failed
    Connection(std::shared_ptr<wmi::Host> host, const std::wstring& machine, bool isRemote);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// The session. Throws std::invalid_argument where it is closed.
    std::shared_ptr<Session> Use();
    /// Disconnects; what a Change still holds open is closed before.
    void Close();
    bool IsOpen() const;

    /// Opens a client set. Throws std::invalid_argument where one is open: it would be replaced.
    void Begin();
    /// Closes it, and tells whether a restart is needed.
    bool Apply();
    /// Closes it after a failure, which must not be hidden by another one.
    void Abandon();

    /// What the provider itself calls a number; empty where it has no text.
    std::wstring ProviderText(const ValueSource& source, std::int32_t number);

  private:
    std::shared_ptr<Session> Open() const;
    std::shared_ptr<Transaction> TakeChange();

    /// The provider's texts of a session, which serve one thread at a time.
    struct Texts;

    const bool m_isRemote;
    mutable std::mutex m_mutex;
    std::shared_ptr<Session> m_session;
    std::shared_ptr<Transaction> m_change; ///< goes before the session
    std::shared_ptr<Texts> m_texts;        ///< made when the first one is wanted
};

/// What is known of the failure of the last operation of this thread beyond its code; mostly nothing.
std::string FailureDetails(const Error& error);

/// What an argument is kept in while an operation looks at it.
template <class Argument>
struct Kept {
    using Type = Given<std::remove_cvref_t<Argument>>;
};
template <class Item>
struct Kept<std::span<const Item>> {
    using Type = Given<std::vector<Item>>;
};

/// An operation for Python. Nothing of Python's is touched while it runs, so other threads may run meanwhile.
template <class Result, class... Arguments>
void Define(pybind11::class_<Connection>& session, const char* name,
            Result (Session::*operation)(Arguments...)) {
    session.def(
        name, [operation](Connection& connection, const typename Kept<Arguments>::Type&... arguments) {
            return WithoutPython([&] { return ((*connection.Use()).*operation)(arguments.value...); });
        });
}

/// The same of a function that gets an object of Python's first.
template <class Self, class Class, class Result, class... Arguments>
void DefineAs(Class& type, const char* name, Result (*function)(Self&, Arguments...)) {
    type.def(name, [function](Self& self, const typename Kept<Arguments>::Type&... arguments) {
        return WithoutPython([&] { return function(self, arguments.value...); });
    });
}

/// The same of a function by itself.
template <class Result, class... Arguments>
auto Checked(Result (*function)(Arguments...)) {
    return [function](const typename Kept<Arguments>::Type&... arguments) {
        return WithoutPython([&] { return function(arguments.value...); });
    };
}

void DefineAdapters(pybind11::class_<Connection>& session);
void DefineSettings(pybind11::class_<Connection>& session);
void DefineTeams(pybind11::class_<Connection>& session);
void DefineVlans(pybind11::class_<Connection>& session);
void DefineDiagnostics(pybind11::module_& module, pybind11::class_<Connection>& session);
void DefineBoot(pybind11::class_<Connection>& session);
void DefineLinkSecurity(pybind11::class_<Connection>& session);
void DefineErrors();
void DefineFetching(pybind11::module_& module, pybind11::class_<Connection>& session);
void DefineSecret(pybind11::module_& module);
void DefineWords(pybind11::module_& module, pybind11::class_<Connection>& session);
void DefineMachines(pybind11::module_& module);

} // namespace quillet::python
