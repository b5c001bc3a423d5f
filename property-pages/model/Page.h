// What every page of a property sheet can do, without a window.
#pragma once

#include "model/Strings.h"
#include "model/Worker.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quillet::pages {

/// What a page wants to be changed, as it was wanted when it was asked for: the worker may carry it out while
/// the page goes on.
struct Change {
    std::function<void(Session&)> write; ///< within the transaction of the sheet
    /// What the library's checks say against it, in words; asked before the transaction begins. Empty:
    /// nothing.
    std::function<std::wstring(Session&)> check{};
    std::vector<std::wstring> warnings{}; ///< what the user should know before
};

/// A page: what was read of the machine, what the user made of it, and what the window shows of both. It
/// lives on the window's thread; its jobs run on the worker's, with copies of what they need.
class Page : public std::enable_shared_from_this<Page> {
  public:
    Page() = default;
    virtual ~Page() = default;
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;

    /// Reads what the page shows. The answer puts it into the page; what the user has changed stays, and what
    /// somebody else changed at the same place is noticed.
    virtual Job Reading() = 0;
    /// Whether there is anything to apply.
    virtual bool IsChanged() const { return false; }
    /// What keeps the user's changes from being applied, in words; empty: nothing.
    virtual std::wstring Mistake() const { return {}; }
    /// The user's changes.
    virtual Change Changes() const { return {}; }
    /// What the machine should be asked about what the user has entered so far; null: nothing. Asked whenever
    /// the page is shown.
    virtual Job Checking() { return nullptr; }
    /// Whether something is under way that would be left half done if the sheet were closed.
    virtual bool MustNotBeLeft() const { return false; }
    /// The changes were written: what cannot be read back is not wanted any more.
    virtual void Settle() {}

    /// What is told at the foot of the page while there is no notice; empty: nothing.
    virtual std::wstring Remark() const { return {}; }

    /// What is wrong or worth knowing, told at the foot of the page; empty: nothing.
    const std::wstring& Notice() const noexcept { return m_notice; }
    void SetNotice(std::wstring notice);
    /// Whether the last reading found that somebody else has changed what the user changed. Asking for it
    /// settles it: the user has been told.
    bool TakeDispute() noexcept { return std::exchange(m_isDisputed, false); }
    /// Whether something has been read at all.
    bool IsRead() const noexcept { return m_isRead; }
    /// Whether the last reading broke off, and left the page as the user has it.
    bool IsLeft() const noexcept { return m_isLeft; }

    /// Told whenever what the window shows may be out of date.
    std::function<void()> changed;
    /// Told that what the page did at once takes effect with a restart of the machine only.
    std::function<void()> restartNeeded;

  protected:
    /// The page as an owner of jobs, and for their answers.
    template <class Model>
    std::shared_ptr<Model> Self() {
        return std::static_pointer_cast<Model>(shared_from_this());
    }
    /// To be asked before an answer of Reading() is taken over: what broke off replaces nothing that the user
    /// is changing. Then the page stays as it is, and shows the notice.
    bool Leave(const std::wstring& notice);
    /// To be called by each answer of Reading() that is taken over.
    void NoteRead(std::wstring notice);
    /// To be called before NoteRead() where somebody else changed the same thing.
    void NoteDispute() noexcept { m_isDisputed = true; }
    void NoteChange() const;
    /// A job that changes something at once, in a client set of its own.
    /// @param done told on the window's thread when it is changed
    Job InSet(std::function<void(Session&)> change, Answer done);

  private:
    std::wstring m_notice;
    bool m_isRead = false;
    bool m_isLeft = false;
    bool m_isDisputed = false;
};

/// Takes over what is there now, where the user has not changed it.
/// @param before  what was read before
/// @param wanted  what the user made of it
/// @returns whether the user and somebody else both changed it, and not to the same
template <class Value>
bool TakeOver(const Value& before, Value& wanted, const Value& now) {
    if (wanted == before) {
        wanted = now;
        return false;
    }
    return !(now == before) && !(now == wanted);
}

/// Reads a list or record that may break off. What was read before is returned, and why there is no more is
/// put into the notice.
template <class Read>
auto ReadWhatThereIs(Read read, std::wstring& notice) -> decltype(read()) {
    try {
        return read();
    } catch (const PartialError<decltype(read())>& part) {
        notice = Say(TextId::ReadInPart, {Reason(part)});
        return part.Read();
    }
}

/// The same of something that may be missing: nothing where it cannot be read.
template <class Read>
auto ReadIfThere(Read read, std::wstring& notice) -> std::optional<decltype(read())> {
    try {
        return ReadWhatThereIs(read, notice);
    } catch (const Error& error) {
        if (notice.empty()) {
            notice = Say(TextId::ReadInPart, {Reason(error)});
        }
        return std::nullopt;
    }
}

/// The adapters with their links and teams. What one of them cannot tell is put into the notice, and hides no
/// other.
std::vector<AdapterOverview> ReadOverviews(Session& session, std::wstring& notice);

/// Whether a failure says that there is no such thing on this machine.
bool IsMissing(const Error& error) noexcept;

/// The same of something that not every adapter has: where it is not there, that is no failure.
template <class Read>
auto ReadUnlessMissing(Read read, std::wstring& notice) -> std::optional<decltype(read())> {
    try {
        return ReadWhatThereIs(read, notice);
    } catch (const Error& error) {
        if (!IsMissing(error) && notice.empty()) {
            notice = Say(TextId::ReadInPart, {Reason(error)});
        }
        return std::nullopt;
    }
}

} // namespace quillet::pages
