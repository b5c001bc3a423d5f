// Pages without windows: a worker with a simulated machine, and a test in the place of the windows' thread.
#pragma once

#include "FreshMachine.h"

#include "model/MachineConnection.h"
#include "model/Sheet.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace quillet::tests {

/// Answers of the worker run in Settle(), on the test's thread.
class ModelDesk {
  public:
    explicit ModelDesk(std::shared_ptr<simulator::Machine> machine = FreshMachine())
        : m_machine(std::move(machine)),
          m_worker(CountingConnect(), [this](pages::Answer answer) { Post(std::move(answer)); }) {}

    simulator::Machine& Machine() const noexcept { return *m_machine; }
    pages::Worker& Worker() noexcept { return m_worker; }

    /// Reads a page.
    void Read(const std::shared_ptr<pages::Page>& page) {
        m_worker.Ask(page, page->Reading(), [page](const std::wstring& reason) {
            page->SetNotice(pages::Say(pages::TextId::NotRead, {reason}));
        });
        Settle();
    }
    /// Applies pages in one client set.
    pages::Applied Apply(const pages::PageList& of) {
        const auto sheet = std::make_shared<pages::Sheet>(m_worker, of);
        std::optional<pages::Applied> applied;
        sheet->Apply([&applied](const pages::Applied& how) { applied = how; });
        Settle();
        EXPECT_TRUE(applied.has_value());
        return applied.value_or(pages::Applied{});
    }
    /// Runs a job, and returns why it failed; empty: it did not.
    std::wstring Do(pages::Job job) {
        std::wstring failure;
        m_worker.Ask(m_owner, std::move(job), [&failure](const std::wstring& reason) { failure = reason; });
        Settle();
        return failure;
    }
    /// Waits until the worker has nothing more to do, and runs its answers.
    void Settle() {
        for (std::uint64_t asked = 0; asked != m_worker.Asked();) {
            bool isLast = false;
            m_worker.Ask(
                m_owner,
                [&](Session&, const pages::Asking&) -> pages::Answer { return [&] { isLast = true; }; },
                [&](const std::wstring&) { isLast = true; });
            asked = m_worker.Asked();
            while (!isLast) {
                if (!RunOne()) {
                    GTEST_FAIL() << "the worker does not answer";
                }
            }
        }
    }
    /// Something that owns questions as long as the desk is there.
    const std::shared_ptr<void>& Owner() const noexcept { return m_owner; }

    /// The provider calls since the last time, as lines of the journal that contain a text.
    std::vector<std::wstring> Calls(const std::wstring& with) const {
        std::vector<std::wstring> lines;
        for (const simulator::JournalEntry& entry : m_machine->Calls().Take()) {
            std::wstring line = entry.Line();
            if (line.find(with) != std::wstring::npos) {
                lines.push_back(std::move(line));
            }
        }
        return lines;
    }

    /// How often the worker has connected.
    int Connections() const noexcept { return m_connections; }

  private:
    pages::Connect CountingConnect() {
        return [this, connect = pages::ConnectTo({.simulated = m_machine})] {
            ++m_connections;
            return connect();
        };
    }
    void Post(pages::Answer answer) {
        {
            const std::lock_guard lock(m_mutex);
            m_answers.push_back(std::move(answer));
        }
        m_changed.notify_all();
    }
    bool RunOne() {
        pages::Answer answer;
        {
            std::unique_lock lock(m_mutex);
            if (!m_changed.wait_for(lock, std::chrono::seconds(60), [this] { return !m_answers.empty(); })) {
                return false;
            }
            answer = std::move(m_answers.front());
            m_answers.pop_front();
        }
        answer();
        return true;
    }

    std::shared_ptr<simulator::Machine> m_machine;
    std::atomic<int> m_connections = 0;
    std::shared_ptr<void> m_owner = std::make_shared<int>();
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<pages::Answer> m_answers;
    pages::Worker m_worker; ///< last: its thread uses the others
};

} // namespace quillet::tests
