// How an adapter authenticates for link security.
#include "model/LinkSecurityPage.h"

#include "model/Words.h"

#include <algorithm>
#include <stdexcept>

namespace quillet::pages {

namespace {

/// Takes over the fields of a record, each by itself.
template <class Record, class... Fields>
bool TakeOverFields(const Record& before, Record& wanted, const Record& now, Fields Record::*... fields) {
    return (int{TakeOver(before.*fields, wanted.*fields, now.*fields)} | ...) != 0;
}

std::wstring SavedWords(const SavedCredentials& saved) {
    std::wstring who = saved.machineCredentials ? saved.machineDomainName : saved.userName;
    who = who.empty() ? Say(TextId::NoUser) : who;
    return Say(saved.password.IsEmpty() ? TextId::SavedWithout : TextId::SavedWith, {who});
}

} // namespace

std::optional<std::int32_t> WholeNumber(const std::wstring& text) {
    try {
        std::size_t used = 0;
        const long long number = std::stoll(text, &used);
        if (used == text.size() && number >= INT32_MIN && number <= INT32_MAX) {
            return static_cast<std::int32_t>(number);
        }
    } catch (const std::logic_error&) {
        // No number, or one that is too long.
    }
    return std::nullopt;
}

struct LinkSecurityPage::Read {
    std::optional<Authentication> authentication; ///< without its password
    bool hasPassword = false;
    std::wstring status;
    std::wstring saved;
};

Job LinkSecurityPage::Reading() {
    return [page = Self<LinkSecurityPage>(), id = m_adapter](Session& session, const Asking&) -> Answer {
        std::wstring notice;
        Read read;
        read.authentication = ReadUnlessMissing([&] { return session.ReadAuthentication(id); }, notice);
        if (read.authentication) {
            read.hasPassword = !read.authentication->password.IsEmpty();
            read.authentication->password.Clear();
        }
        if (const auto saved = ReadUnlessMissing([&] { return session.ReadSavedCredentials(id); }, notice)) {
            read.saved = SavedWords(*saved);
        }
        if (const auto state = ReadIfThere([&] { return session.ReadState(id); }, notice)) {
            read.status = InOwnLanguage(Text(state->linkSecurity));
        }
        return [page, read, notice] { page->Take(read, notice); };
    };
}

void LinkSecurityPage::Take(const Read& now, std::wstring notice) {
    if (Leave(notice)) {
        return;
    }
    m_status = now.status;
    m_saved = now.saved;
    if (now.authentication) {
        m_hasPassword = now.hasPassword;
        TakeAuthentication(*now.authentication, notice);
    } else {
        // What cannot be read just now was there before, and what was typed stays.
        m_isThere = m_isThere && !notice.empty();
        m_status = notice.empty() ? Say(TextId::NoLinkSecurity) : m_status;
    }
    NoteRead(std::move(notice));
}

void LinkSecurityPage::TakeAuthentication(const Authentication& now, std::wstring& notice) {
    using Methods = AuthenticationMethods;
    using Whole = Authentication;
    const bool isFirst = !std::exchange(m_isThere, true);
    const bool isKindTyped = !isFirst && m_keyKind != std::to_wstring(m_read.methods.keySecurity);
    if (isFirst) {
        m_read = m_wanted = now;
    }
    const Whole before = std::exchange(m_read, now);
    const bool areMethodsDisputed =
        TakeOverFields(before.methods, m_wanted.methods, now.methods, &Methods::outer, &Methods::inner,
                       &Methods::keySecurity, &Methods::randomMac);
    const bool areOthersDisputed =
        TakeOverFields(before, m_wanted, now, &Whole::userName, &Whole::machineDomainName, &Whole::autoPac,
                       &Whole::pac, &Whole::machineCredentials, &Whole::windowsCredentials);
    if (!isKindTyped) {
        m_keyKind = std::to_wstring(m_wanted.methods.keySecurity);
    }
    if (areMethodsDisputed || areOthersDisputed) {
        NoteDispute();
        notice = Say(TextId::SomethingChanged);
    }
}

std::vector<std::int32_t> LinkSecurityPage::MethodsTo(std::int32_t last, std::int32_t read) {
    std::vector<std::int32_t> methods;
    for (std::int32_t method = 1; method <= last; ++method) {
        methods.push_back(method);
    }
    if (read < 1 || read > last) {
        methods.push_back(read);
    }
    return methods;
}

/// What the outer method takes of what the user wants: the rest is not sent.
Authentication LinkSecurityPage::Written() const {
    Authentication written = m_wanted;
    if (!UsesCredentials()) {
        written.methods.inner = m_read.methods.inner;
        written.userName = m_read.userName;
        written.machineCredentials = m_read.machineCredentials;
        written.windowsCredentials = m_read.windowsCredentials;
    }
    if (!UsesPac()) {
        written.autoPac = m_read.autoPac;
        written.pac = m_read.pac;
    }
    return written;
}

bool LinkSecurityPage::IsChanged() const {
    return IsThere() && (Written() != m_read || (UsesCredentials() && IsPasswordTyped()) ||
                         m_keyKind != std::to_wstring(m_read.methods.keySecurity));
}

std::wstring LinkSecurityPage::Mistake() const {
    if (!WholeNumber(m_keyKind)) {
        return Say(TextId::NoNumber, {m_keyKind});
    }
    if (m_wanted.methods.outer < 1 || m_wanted.methods.outer > 4) {
        return Say(TextId::NoOuter);
    }
    return UsesCredentials() && m_wanted.userName.empty() && !m_read.userName.empty() ? Say(TextId::UserStays)
                                                                                      : std::wstring();
}

Change LinkSecurityPage::Changes() const {
    Authentication written = Written();
    if (UsesCredentials()) {
        written.password = m_password; // an empty one is not sent, and stays as it is
    }
    Change change{.write = [id = m_adapter, written, reload = m_reload](Session& session) {
        session.SetAuthentication(id, written, reload);
    }};
    if (m_reload == Reload::Driver) {
        change.warnings.push_back(Say(TextId::ReloadInterrupts));
    }
    return change;
}

void LinkSecurityPage::Edit(const std::function<void(Authentication&)>& how) {
    if (IsThere()) {
        how(m_wanted);
        NoteChange();
    }
}

void LinkSecurityPage::TypePassword(Secret password) {
    m_password = std::move(password);
    NoteChange();
}

void LinkSecurityPage::TypeKeyKind(const std::wstring& number) {
    m_keyKind = number;
    m_wanted.methods.keySecurity = WholeNumber(number).value_or(m_wanted.methods.keySecurity);
    NoteChange();
}

} // namespace quillet::pages
