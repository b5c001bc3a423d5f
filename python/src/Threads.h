// Python's lock while operations run: other threads have it, Ctrl-C is heeded, and whoever comes back when
// the interpreter goes gets no further.
#pragma once

#include <pybind11/pybind11.h>

#include <stop_token>
#include <type_traits>

namespace quillet::python {

/// While one lives, Python's other threads run. Once the interpreter goes, only the thread that ends it comes
/// back from here: any other one would be torn down while it takes the lock, and the process with it.
class Unlocked {
  public:
    Unlocked();
    ~Unlocked();
    Unlocked(const Unlocked&) = delete;
    Unlocked& operator=(const Unlocked&) = delete;

  private:
    PyThreadState* const m_thread;
};

/// Thrown at an operation that calls back while the interpreter goes.
struct InterpreterGone {};

/// Whether the interpreter goes, and this is not the thread that ends it.
bool IsGone() noexcept;

/// While one lives, a request to stop also ends what its thread waits for over the network: not at once, for
/// what is asked on account of the request may be answered.
class Stoppable {
  public:
    explicit Stoppable(std::stop_token stop);
    ~Stoppable();
    Stoppable(const Stoppable&) = delete;
    Stoppable& operator=(const Stoppable&) = delete;
};

/// Whether this thread is not to wait any longer: because of Ctrl-C, because it was told to stop, or because
/// the interpreter goes.
bool IsInterrupted();
/// Throws what a handler of Ctrl-C has thrown on this thread while it waited.
void HeedInterruption();

/// Sees to it that at the end of the interpreter no thread but the one that ends it comes back from an
/// operation any more. The end waits, but not for ever, for those that are in one.
void PrepareThreads();

/// Calls back into Python in the midst of an operation.
template <class Function>
void WithPython(const Function& function) {
    if (IsGone()) {
        throw InterpreterGone();
    }
    const pybind11::gil_scoped_acquire lock;
    function();
}

/// Runs an operation that touches nothing of Python's.
template <class Function>
auto WithoutPython(const Function& function) {
    const auto run = [&] {
        const Unlocked unlocked;
        return function();
    };
    if constexpr (std::is_void_v<decltype(function())>) {
        run();
        HeedInterruption();
    } else {
        auto result = run();
        HeedInterruption();
        return result;
    }
}

} // namespace quillet::python
