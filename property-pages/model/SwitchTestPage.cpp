// The test of a team's switch.
#include "model/SwitchTestPage.h"

#include "model/Words.h"

namespace quillet::pages {

Job SwitchTestPage::Reading() {
    return [page = Self<SwitchTestPage>(), id = m_team](Session& session, const Asking&) -> Answer {
        const TeamMode mode = session.ReadTeam(id).mode;
        const SwitchTest test =
            HasSwitchTest(mode) ? session.TestSwitch(id, SwitchCommand::Query) : SwitchTest();
        return [page, mode, test] {
            page->m_hasTest = HasSwitchTest(mode);
            page->m_test = test;
            page->NoteRead(page->m_hasTest ? std::wstring()
                                           : Say(TextId::NoSwitchTest, {InOwnLanguage(Text(mode))}));
        };
    };
}

std::wstring SwitchTestPage::Status() const {
    return m_hasTest ? InOwnLanguage(Text(m_test.status)) : std::wstring();
}

Job SwitchTestPage::Sending(SwitchCommand command) {
    return [page = Self<SwitchTestPage>(), id = m_team, command](Session& session, const Asking&) -> Answer {
        const SwitchTest test = session.TestSwitch(id, command);
        return [page, test] {
            page->m_test = test;
            page->SetNotice({});
        };
    };
}

} // namespace quillet::pages
