// What the machine's checks say to what the user has entered, while it is being entered.
#pragma once

#include "model/Page.h"

#include <optional>
#include <utility>

namespace quillet::pages {

/// A member of a page. The machine is asked one question at a time, and about every entry once, however fast
/// somebody types.
template <class Entry, class Verdict>
class Opinion {
  public:
    /// What to ask the machine; null where it has been asked, or is being asked.
    /// @param judge runs on the worker's thread: the verdict on an entry
    template <class Judge>
    Job Question(std::shared_ptr<Page> page, const Entry& entry, Judge judge) {
        if (m_isAsked || Of(entry) != nullptr) {
            return nullptr;
        }
        m_isAsked = true;
        return [this, page = std::move(page), entry, judge](Session& session, const Asking&) -> Answer {
            Verdict verdict{};
            std::wstring reason;
            try {
                verdict = judge(session, entry);
            } catch (const Error& error) {
                reason = Say(TextId::NotChecked, {Reason(error)});
            }
            return [this, page, entry, verdict, reason] {
                m_isAsked = false;
                m_entry = entry;
                m_verdict = verdict;
                page->SetNotice(reason.empty() ? page->Notice() : reason);
            };
        };
    }
    /// The verdict on an entry; null where it is not known yet.
    const Verdict* Of(const Entry& entry) const { return m_entry == entry ? &m_verdict : nullptr; }
    /// The verdict on the last entry that was judged, whatever it was.
    const Verdict& Last() const noexcept { return m_verdict; }
    /// The machine is not any more what it was when it was asked.
    void Forget() { m_entry.reset(); }

  private:
    bool m_isAsked = false;
    std::optional<Entry> m_entry;
    Verdict m_verdict{};
};

} // namespace quillet::pages
