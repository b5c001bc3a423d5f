// Reading several things of one object at the price of one fetch, in scopes of Python's.
#include "Connection.h"

#include <algorithm>
#include <atomic>
#include <cstdint>

namespace quillet::python {

namespace {

struct Scope {
    explicit Scope(std::shared_ptr<Session> connected) : session(std::move(connected)), fetching(*session) {}

    const std::uint64_t number = ++g_numbers;
    const std::shared_ptr<Session> session; ///< which it may outlive in Python
    FetchOnce fetching;

  private:
    inline static std::atomic<std::uint64_t> g_numbers = 0;
};

/// The scopes of a thread. One within another ends first: where Python lets an outer one end before, as it
/// may in a generator, the inner ones end with it, and fetch every time from then on.
class Scopes {
  public:
    Scopes() = default;
    ~Scopes() { EndFrom(0); }
    Scopes(const Scopes&) = delete;
    Scopes& operator=(const Scopes&) = delete;

    std::uint64_t Begin(std::shared_ptr<Session> session) {
        m_scopes.push_back(std::make_unique<Scope>(std::move(session)));
        return m_scopes.back()->number;
    }

    void End(std::uint64_t number) {
        const auto found = std::find_if(m_scopes.begin(), m_scopes.end(),
                                        [&](const auto& scope) { return scope->number == number; });
        EndFrom(static_cast<std::size_t>(found - m_scopes.begin()));
    }

  private:
    void EndFrom(std::size_t place) {
        while (m_scopes.size() > place) {
            m_scopes.pop_back();
        }
    }

    std::vector<std::unique_ptr<Scope>> m_scopes;
};

thread_local Scopes g_scopes;

std::uint64_t Begin(Connection& connection) {
    return g_scopes.Begin(connection.Use());
}

void End(std::uint64_t number) {
    g_scopes.End(number);
}

} // namespace

void DefineFetching(pybind11::module_& module, pybind11::class_<Connection>& session) {
    DefineAs(session, "begin_fetching", &Begin);
    module.def("end_fetching", Checked(&End));
}

} // namespace quillet::python
