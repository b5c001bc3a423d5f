// What every page of a property sheet can do.
#include "model/Page.h"

#include <quillet/client/Text.h>

namespace quillet::pages {

void Page::SetNotice(std::wstring notice) {
    m_notice = std::move(notice);
    NoteChange();
}

bool Page::Leave(const std::wstring& notice) {
    m_isLeft = !notice.empty() && m_isRead && IsChanged();
    if (m_isLeft) {
        SetNotice(notice);
    }
    return m_isLeft;
}

void Page::NoteRead(std::wstring notice) {
    m_isRead = true;
    SetNotice(std::move(notice));
}

void Page::NoteChange() const {
    if (changed) {
        changed();
    }
}

std::vector<AdapterOverview> ReadOverviews(Session& session, std::wstring& notice) {
    std::vector<AdapterOverview> overviews = session.AdapterOverviews();
    for (const AdapterOverview& overview : overviews) {
        if (overview.failure && notice.empty()) {
            notice = Say(TextId::ReadInPart, {FromUtf8(ExplainResult(overview.failure.value()))});
        }
    }
    return overviews;
}

bool IsMissing(const Error& error) noexcept {
    constexpr std::uint32_t kNotFound = 0x80041002U;
    constexpr std::uint32_t kNotSupported = 0x8004100CU;
    const auto code = static_cast<std::uint32_t>(error.Code());
    return code == kNotFound || code == kNotSupported;
}

Job Page::InSet(std::function<void(Session&)> change, Answer done) {
    return [page = shared_from_this(), change = std::move(change),
            done = std::move(done)](Session& session, const Asking&) -> Answer {
        Transaction transaction(session);
        change(session);
        const bool isNeeded = transaction.Apply().restartNeeded;
        return [page, done, isNeeded] {
            done();
            if (isNeeded && page->restartNeeded) {
                page->restartNeeded();
            }
        };
    };
}

} // namespace quillet::pages
