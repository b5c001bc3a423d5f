// PAC files of link security, and its log.
#include "model/PacPage.h"

namespace quillet::pages {

namespace {

/// The last part of a path of Windows'.
std::wstring FileName(const std::wstring& path) {
    const std::size_t separator = path.find_last_of(L"/\\");
    return separator == std::wstring::npos ? path : path.substr(separator + 1);
}

std::wstring Described(const PacContents& pac) {
    return Say(TextId::PacContents, {pac.description, std::to_wstring(pac.type), pac.authorityText,
                                     pac.authority, pac.issuedTo, std::to_wstring(pac.expires)});
}

} // namespace

Job PacPage::Reading() {
    return [page = Self<PacPage>(), id = m_adapter](Session& session, const Asking&) -> Answer {
        std::wstring notice;
        const auto log = ReadUnlessMissing([&] { return session.ReadSecurityLog(id); }, notice);
        return [page, log, notice] {
            page->m_isThere = log.has_value();
            page->m_log = log ? *log : notice.empty() ? Say(TextId::NoLinkSecurity) : std::wstring();
            page->NoteRead(notice);
        };
    };
}

Job PacPage::Importing(const std::wstring& path, Reload reload) {
    const PacFile file{path, m_password, true};
    return InSet([id = m_adapter, file, reload](Session& session) { session.ImportPac(id, file, reload); },
                 [page = Self<PacPage>(), name = FileName(path)] {
                     page->m_password.Clear();
                     page->m_imported = name;
                     page->SetNotice(Say(TextId::PacImported, {name}));
                 });
}

Job PacPage::Looking(const std::wstring& name) {
    return [page = Self<PacPage>(), name, id = m_adapter](Session& session, const Asking&) -> Answer {
        return [page, contents = Described(session.ReadPac(id, name))] {
            page->m_contents = contents;
            page->SetNotice({});
        };
    };
}

Job PacPage::Deleting(const std::wstring& name) {
    return InSet([id = m_adapter, name](Session& session) { session.DeletePac(id, name); },
                 [page = Self<PacPage>(), name] {
                     page->m_contents.clear();
                     page->SetNotice(Say(TextId::PacDeleted, {name}));
                 });
}

} // namespace quillet::pages
