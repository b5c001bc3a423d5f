// A thread of its own reads the line: a read cannot be given up.
#include "commands/config/Confirmation.h"

#include <condition_variable>
#include <iostream>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace quilletctl {

namespace {

/// Outlives the question where nobody answers.
struct Reply {
    std::mutex mutex;
    std::condition_variable given;
    std::optional<std::string> line;
};

} // namespace

bool IsConfirmed(Invocation& run, std::chrono::seconds patience) {
    constexpr std::chrono::milliseconds kLook{100}; // at requests to end
    run.Out().flush();
    run.Screen().err << "quilletctl: keep these changes? They are taken back in " << patience.count()
                     << (patience.count() == 1 ? " second" : " seconds") << " [y/N] " << std::flush;
    const auto answer = std::make_shared<Reply>();
    std::istream& in = run.Screen().in != nullptr ? *run.Screen().in : std::cin;
    std::thread([answer, &in] {
        std::string line;
        if (!std::getline(in, line)) {
            return; // there is nobody, and so the time runs out
        }
        const std::lock_guard lock(answer->mutex);
        answer->line = line;
        answer->given.notify_one();
    }).detach();
    const std::chrono::steady_clock::time_point end = std::chrono::steady_clock::now() + patience;
    std::unique_lock lock(answer->mutex);
    while (!answer->line && std::chrono::steady_clock::now() < end && !run.IsInterrupted()) {
        answer->given.wait_for(lock, kLook);
    }
    const std::string line = answer->line.value_or("");
    return line == "y" || line == "Y" || line == "yes";
}

} // namespace quilletctl
