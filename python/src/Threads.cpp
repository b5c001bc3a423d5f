#include "Threads.h"

#include <atomic>
#include <chrono>
#include <optional>
#include <thread>
#include <utility>

namespace quillet::python {

namespace {

using Clock = std::chrono::steady_clock;

std::atomic<int> g_outside = 0; ///< threads in an operation, or on their way back from one
std::atomic<bool> g_isGoing = false;
std::atomic<std::thread::id> g_last; ///< the thread that ends the interpreter
unsigned long g_signalled = 0;       ///< the thread that signals are handled on: no other heeds Ctrl-C

thread_local std::optional<pybind11::error_already_set> g_interruption;
thread_local std::stop_token g_stop;
thread_local std::optional<Clock::time_point> g_stopSeen;

/// Whether this thread was told to stop some time ago.
bool IsStopped() {
    constexpr auto kGrace = std::chrono::seconds(2);
    if (!g_stop.stop_requested()) {
        return false;
    }
    g_stopSeen = g_stopSeen.value_or(Clock::now());
    return Clock::now() - *g_stopSeen > kGrace;
}

PyThreadState* Release() {
    g_interruption.reset(); // one that an earlier operation left behind is not this one's
    return PyEval_SaveThread();
}

/// Until the process is gone.
[[noreturn]] void Stay() {
    --g_outside;
    while (true) {
        std::this_thread::sleep_for(std::chrono::hours(1));
    }
}

void Leave() {
    g_last = std::this_thread::get_id();
    g_isGoing = true;
    constexpr auto kPatience = std::chrono::seconds(10);
    const auto end = Clock::now() + kPatience;
    PyThreadState* const thread = PyEval_SaveThread();
    while (g_outside > 0 && Clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    PyEval_RestoreThread(thread);
}

} // namespace

bool IsGone() noexcept {
    return g_isGoing && g_last.load() != std::this_thread::get_id();
}

Unlocked::Unlocked() : m_thread(Release()) {
    ++g_outside;
    if (IsGone()) {
        Stay();
    }
}

Unlocked::~Unlocked() {
    if (IsGone()) {
        Stay();
    }
    PyEval_RestoreThread(m_thread);
    --g_outside;
}

Stoppable::Stoppable(std::stop_token stop) {
    g_stop = std::move(stop);
    g_stopSeen.reset();
}

Stoppable::~Stoppable() {
    g_stop = {};
}

bool IsInterrupted() {
    if (IsGone() || IsStopped() || g_interruption) {
        return true;
    }
    if (g_isGoing || PyThread_get_thread_ident() != g_signalled) {
        return false;
    }
    const pybind11::gil_scoped_acquire lock;
    if (PyErr_CheckSignals() != 0) {
        g_interruption.emplace();
    }
    return g_interruption.has_value();
}

void HeedInterruption() {
    if (auto interruption = std::exchange(g_interruption, std::nullopt)) {
        throw std::move(*interruption);
    }
}

void PrepareThreads() {
    g_signalled =
        pybind11::module_::import("threading").attr("main_thread")().attr("ident").cast<unsigned long>();
    // Before anything of the package's, so it is called after it.
    pybind11::module_::import("atexit").attr("register")(pybind11::cpp_function(&Leave));
}

} // namespace quillet::python
