// The thread that talks to the machine.
#include "model/Worker.h"

#include "model/Strings.h"

#include <quillet/client/Text.h>

#include <array>

namespace quillet::pages {

namespace {

/// Codes after which a session is of no use any more: the provider or the way to it is gone.
bool IsLost(const Error& error) noexcept {
    constexpr std::array<std::uint32_t, 7> kLost{0x800706BAU,  // the server is unavailable
                                                 0x800706BEU,  // the call failed
                                                 0x80010108U,  // the object has disconnected
                                                 0x80010012U,  // the server died
                                                 0x8004100AU,  // critical error
                                                 0x80041015U,  // the transport failed
                                                 0x80041032U}; // cancelled: the connection went
    for (const std::uint32_t lost : kLost) {
        if (static_cast<std::uint32_t>(error.Code()) == lost) {
            return true;
        }
    }
    return false;
}

} // namespace

Worker::Worker(Connect connect, Post post)
    : m_connect(std::move(connect)), m_post(std::move(post)), m_thread([this] { Run(); }) {}

Worker::~Worker() {
    End();
    m_thread.join();
}

void Worker::End() {
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
        m_waiting.clear();
        m_current.request_stop();
    }
    m_changed.notify_all();
}

std::stop_source Worker::Ask(const std::shared_ptr<void>& owner, Job job, Failed failed) {
    std::stop_source stop;
    ++m_asked;
    {
        const std::lock_guard lock(m_mutex);
        m_waiting.push_back({owner, std::move(job), std::move(failed), stop});
    }
    m_changed.notify_all();
    return stop;
}

bool Worker::Leave(std::chrono::milliseconds patience) {
    End();
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, patience, [this] { return !m_isBusy; });
}

void Worker::Run() {
    const ComUsage com;
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_isEnding || !m_waiting.empty(); });
        if (m_isEnding) {
            break;
        }
        Question asked = std::move(m_waiting.front());
        m_waiting.pop_front();
        m_current = asked.stop;
        m_isBusy = true;
        lock.unlock();
        Do(asked);
        // What the job holds may be the last of its owner's: it goes before anybody is told of the end.
        asked = {};
        lock.lock();
        m_isBusy = false;
        m_changed.notify_all();
    }
    lock.unlock();
    m_connection.reset();
}

void Worker::Do(Question& asked) {
    if (!asked.owner.expired()) {
        Hand(asked, Try(asked));
    }
}

Answer Worker::Try(Question& asked) {
    const auto failure = [&asked](const std::exception& why) -> Answer {
        return [failed = asked.failed, reason = Reason(why)] { failed(reason); };
    };
    try {
        if (m_connection == nullptr) {
            m_connection = m_connect();
        }
        Answer answer = asked.job(m_connection->Machine(),
                                  Asking(asked.stop.get_token(), [this, &asked](Answer progress) {
                                      Hand(asked, std::move(progress));
                                  }));
        m_connection->Save();
        return answer;
    } catch (const Error& error) {
        if (IsLost(error)) {
            m_connection.reset();
        }
        return failure(error);
    } catch (const std::exception& other) {
        return failure(other);
    }
}

void Worker::Hand(const Question& asked, Answer answer) {
    if (answer == nullptr) {
        return;
    }
    m_post([owner = asked.owner, answer = std::move(answer)] {
        if (const std::shared_ptr<void> alive = owner.lock()) {
            answer();
        }
    });
}

std::wstring Reason(const std::exception& failure) {
    if (const auto* error = dynamic_cast<const Error*>(&failure)) {
        return FromUtf8(ExplainResult(error->Code()));
    }
    return FromUtf8(failure.what());
}

} // namespace quillet::pages
