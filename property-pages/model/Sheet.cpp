// The pages of one object, and the one client set in which they are applied.
#include "model/Sheet.h"

#include <algorithm>

namespace quillet::pages {

namespace {

/// What came of writing: nothing is wrong where there is no page to blame.
struct Written {
    std::shared_ptr<Page> failed;
    std::wstring reason;
    bool restartNeeded = false;
};

using WantedChanges = std::vector<std::pair<std::shared_ptr<Page>, Change>>;

/// Makes the changes in one client set. After a failure the set is closed all the same, and what was changed
/// until then stays.
Written WriteAll(Session& session, const WantedChanges& wanted) {
    Written written;
    try {
        for (const auto& [page, change] : wanted) {
            written.failed = page;
            written.reason = change.check ? change.check(session) : std::wstring();
            if (!written.reason.empty()) {
                return written;
            }
        }
        Transaction transaction(session);
        for (const auto& [page, change] : wanted) {
            written.failed = page;
            change.write(session);
        }
        written.restartNeeded = transaction.Apply().restartNeeded;
        written.failed = nullptr;
    } catch (const std::exception& failure) {
        written.reason = Reason(failure);
    }
    return written;
}

/// Reads pages one after the other, and yields the answers of all of them as one.
Answer ReadAll(Session& session, const Asking& asking, const std::vector<Job>& readings) {
    std::vector<Answer> answers;
    answers.reserve(readings.size());
    for (const Job& reading : readings) {
        answers.push_back(reading(session, asking));
    }
    return [answers = std::move(answers)] {
        for (const Answer& answer : answers) {
            answer();
        }
    };
}

/// The same after a change: what cannot be read now does not undo that it was written.
/// @param reason why it cannot
Answer ReadAllIfPossible(Session& session, const Asking& asking, const std::vector<Job>& readings,
                         std::wstring& reason) {
    try {
        return ReadAll(session, asking, readings);
    } catch (const std::exception& failure) {
        reason = Reason(failure);
        return nullptr;
    }
}

std::vector<Job> Readings(const PageList& pages) {
    std::vector<Job> readings;
    readings.reserve(pages.size());
    for (const std::shared_ptr<Page>& page : pages) {
        readings.push_back(page->Reading());
    }
    return readings;
}

/// Whether the machine has taken what was written, as far as it could be read; a page of which it has not
/// says so.
bool AreTaken(const PageList& pages) {
    bool areTaken = true;
    for (const std::shared_ptr<Page>& page : pages) {
        page->TakeDispute(); // what is there now was read after the writing: nobody else's change
        if (page->IsChanged() && !page->IsLeft()) {
            page->SetNotice(Say(TextId::NotTaken));
            areTaken = false;
        }
    }
    return areTaken;
}

} // namespace

Sheet::Sheet(Worker& worker, PageList pages) : m_worker(worker), m_pages(std::move(pages)) {}

void Sheet::Read(const std::shared_ptr<Page>& page) {
    m_worker.Ask(page, page->Reading(), [raw = page.get()](const std::wstring& reason) {
        raw->SetNotice(Say(TextId::NotRead, {reason}));
    });
}

void Sheet::ReadAgain() {
    for (const std::shared_ptr<Page>& page : m_pages) {
        if (page->IsRead()) {
            Read(page);
        }
    }
}

bool Sheet::IsChanged() const {
    return !ChangedPages().empty();
}

bool Sheet::IsBusy() const {
    return m_isBusy || std::ranges::any_of(m_pages, [](const auto& page) { return page->MustNotBeLeft(); });
}

PageList Sheet::ChangedPages() const {
    PageList pages;
    for (const std::shared_ptr<Page>& page : m_pages) {
        if (page->IsChanged()) {
            pages.push_back(page);
        }
    }
    return pages;
}

std::shared_ptr<Page> Sheet::FirstMistake() const {
    for (const std::shared_ptr<Page>& page : m_pages) {
        if (page->IsChanged() && !page->Mistake().empty()) {
            return page;
        }
    }
    return nullptr;
}

std::vector<std::wstring> Sheet::Warnings() const {
    std::vector<std::wstring> warnings;
    for (const std::shared_ptr<Page>& page : ChangedPages()) {
        for (std::wstring& warning : page->Changes().warnings) {
            warnings.push_back(std::move(warning));
        }
    }
    return warnings;
}

Failed Sheet::Failing(const PageList& pages, const Done& done) {
    return [this, pages, done](const std::wstring& reason) {
        pages.front()->SetNotice(Say(TextId::NotWritten, {reason}));
        End({}, done);
    };
}

void Sheet::Apply(const Done& done) {
    const PageList pages = ChangedPages();
    if (m_isBusy || pages.empty()) {
        done({.isDone = pages.empty()});
        return;
    }
    m_isBusy = true;
    for (const std::shared_ptr<Page>& page : pages) {
        page->TakeDispute(); // what was noticed before has been told
    }
    const auto look = [this, pages, done, readings = Readings(pages)](Session& session,
                                                                      const Asking& asking) -> Answer {
        return [this, pages, done, read = ReadAll(session, asking, readings)] {
            read();
            bool isDisputed = false;
            for (const std::shared_ptr<Page>& page : pages) {
                isDisputed = page->TakeDispute() || isDisputed;
            }
            if (isDisputed) {
                End({}, done);
            } else {
                Write(pages, done);
            }
        };
    };
    m_worker.Ask(shared_from_this(), look, Failing(pages, done));
}

void Sheet::Write(const PageList& pages, const Done& done) {
    WantedChanges wanted;
    for (const std::shared_ptr<Page>& page : pages) {
        wanted.emplace_back(page, page->Changes());
    }
    const auto write = [this, wanted, done, pages,
                        readings = Readings(pages)](Session& session, const Asking& asking) -> Answer {
        const Written written = WriteAll(session, wanted);
        std::wstring unread;
        const Answer read = ReadAllIfPossible(session, asking, readings, unread);
        return [this, done, written, pages, read, unread] {
            if (written.failed == nullptr) {
                for (const std::shared_ptr<Page>& page : pages) {
                    page->Settle();
                }
            }
            if (read) {
                read();
            }
            bool isDone = written.failed == nullptr;
            if (!isDone) {
                written.failed->SetNotice(Say(TextId::NotWritten, {written.reason}));
            } else if (read) {
                isDone = AreTaken(pages);
            } else {
                pages.front()->SetNotice(Say(TextId::WrittenNotRead, {unread}));
            }
            End({.isDone = isDone, .restartNeeded = written.restartNeeded}, done);
        };
    };
    m_worker.Ask(shared_from_this(), write, Failing(pages, done));
}

void Sheet::End(const Applied& applied, const Done& done) {
    m_isBusy = false;
    done(applied);
}

} // namespace quillet::pages
