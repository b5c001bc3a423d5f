// The thread that talks to the machine, so that no window ever waits for it.
#pragma once

#include <quillet/client.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>

namespace quillet::pages {

/// What is done on the window's thread.
using Answer = std::function<void()>;

/// One question to the machine while it is asked: for the job.
class Asking {
  public:
    /// Hands something to the window's thread; for progress.
    using Tell = std::function<void(Answer)>;

    Asking(std::stop_token stop, Tell tell) : m_stop(std::move(stop)), m_tell(std::move(tell)) {}

    /// Whether nobody wants the answer any more.
    const std::stop_token& Stop() const noexcept { return m_stop; }
    /// Shows how far it is.
    void Show(Answer progress) const { m_tell(std::move(progress)); }

  private:
    std::stop_token m_stop;
    Tell m_tell;
};

/// What is done on the worker's thread; what it returns is done on the window's.
using Job = std::function<Answer(Session&, const Asking&)>;
/// Told on the window's thread that a job failed, and why, in words.
using Failed = std::function<void(const std::wstring& reason)>;

/// What keeps the session: the worker makes it on its own thread, and again after the provider went away.
class Connection {
  public:
    virtual ~Connection() = default;
    virtual Session& Machine() = 0;
    /// After each job that ended well: what was changed may have to be kept.
    virtual void Save() {}
};
using Connect = std::function<std::unique_ptr<Connection>()>;

/// Does one job after the other. Nothing of it blocks the thread that asks.
class Worker {
  public:
    /// Hands an answer to the window's thread; may be called from any thread.
    using Post = std::function<void(Answer)>;

    Worker(Connect connect, Post post);
    /// Stops the job under way, forgets the others, and waits for the thread. See Leave().
    ~Worker();
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// Asks. Neither the answer nor the failure comes where the owner is gone by then.
    /// @returns with what to stop the job
    std::stop_source Ask(const std::shared_ptr<void>& owner, Job job, Failed failed);

    /// How many questions there were so far.
    std::uint64_t Asked() const noexcept { return m_asked; }

    /// Stops everything, and waits for the job under way for so long. Where a provider does not return, the
    /// program cannot wait for it.
    /// @returns whether the thread has nothing under way any more
    bool Leave(std::chrono::milliseconds patience);

  private:
    struct Question {
        std::weak_ptr<void> owner;
        Job job;
        Failed failed;
        std::stop_source stop;
    };

    void Run();
    void End();
    void Do(Question& asked);
    Answer Try(Question& asked);
    void Hand(const Question& asked, Answer answer);

    Connect m_connect;
    Post m_post;
    std::unique_ptr<Connection> m_connection; ///< the worker's thread alone uses it
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Question> m_waiting;
    std::stop_source m_current{std::nostopstate};
    bool m_isBusy = false;
    bool m_isEnding =
        false; ///< no stop token: waiting for one never ended now and then with mingw-w64's threads
    std::atomic<std::uint64_t> m_asked{0};
    std::thread m_thread; ///< last: it uses all of the others
};

/// Why something failed, in words and with the code: "access is denied (0x80041003 WBEM_E_ACCESS_DENIED)".
std::wstring Reason(const std::exception& failure);

} // namespace quillet::pages
