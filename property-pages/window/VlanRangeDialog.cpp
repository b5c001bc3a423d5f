// The dialog for several VLANs.
#include "window/VlanRangeDialog.h"

#include "resources/Ids.h"
#include "window/Application.h"

namespace quillet::pages {

VlanRangeDialog::VlanRangeDialog(Application& application, std::shared_ptr<VlanRangePage> page)
    : OnePageDialog(application, page, ID_VLAN_RANGE, Say(TextId::SeveralVlansTitle)),
      m_page(std::move(page)) {}

void VlanRangeDialog::ShowPage() {
    const VlanRangeEntry& entry = m_page->Entry();
    SetText(ID_RANGE_PARENT, m_page->Parent().name);
    SetText(ID_RANGE_FIRST, entry.first);
    SetText(ID_RANGE_LAST, entry.last);
    SetText(ID_RANGE_PATTERN, entry.pattern);
    SetText(ID_RANGE_PREVIEW, m_page->Preview());
    SetText(ID_RANGE_PROBLEM, m_page->CanEdit() ? m_page->Mistake() : std::wstring());
    for (const int id : {ID_RANGE_FIRST, ID_RANGE_LAST, ID_RANGE_PATTERN}) {
        Enable(id, m_page->CanEdit());
    }
    Dialog::Show(ID_RANGE_PROGRESS, m_page->IsBusy());
    Send(ID_RANGE_PROGRESS, PBM_SETRANGE32, 0, LPARAM(m_page->Total()));
    Send(ID_RANGE_PROGRESS, PBM_SETPOS, m_page->Done());
    SetText(IDCANCEL, Say(m_page->IsBusy() ? TextId::Stop : TextId::Cancel));
}

void VlanRangeDialog::OnControl(int id, unsigned code) {
    if (code != EN_CHANGE) {
        return;
    }
    if (id == ID_RANGE_FIRST) {
        m_page->TypeFirst(TextOf(id));
    } else if (id == ID_RANGE_LAST) {
        m_page->TypeLast(TextOf(id));
    } else if (id == ID_RANGE_PATTERN) {
        m_page->TypePattern(TextOf(id));
    }
}

bool VlanRangeDialog::CanAccept() const {
    return m_page->CanEdit() && !m_page->Wanted().empty() && m_page->Mistake().empty();
}

void VlanRangeDialog::Accept() {
    const auto done = [this](const VlanRangePage::Made& made) {
        m_hasMadeAny = m_hasMadeAny || made.count > 0;
        if (made.isAll) {
            EndWell(made.restartNeeded);
        } else if (made.restartNeeded) {
            Program().OfferRestart(Handle());
        }
    };
    m_stop = Ask(m_page->Making(done),
                 [page = m_page.get()](const std::wstring& reason) { page->NoteFailure(reason); });
}

void VlanRangeDialog::Leave() {
    if (m_page->IsBusy()) {
        m_stop.request_stop(); // what is made by then stays, and is told
    } else {
        OnePageDialog::Leave();
    }
}

} // namespace quillet::pages
