// The window of the page "Link security".
#include "window/LinkSecurityView.h"

#include "resources/Ids.h"

#include <algorithm>

namespace quillet::pages {

namespace {

std::vector<std::wstring> MethodWords(const std::vector<std::int32_t>& methods) {
    std::vector<std::wstring> words;
    for (const std::int32_t method : methods) {
        words.push_back(Say(TextId::SecurityMethod, {std::to_wstring(method)}));
    }
    return words;
}

int PlaceOf(std::int32_t method, const std::vector<std::int32_t>& methods) {
    return int(std::ranges::find(methods, method) - methods.begin());
}

} // namespace

LinkSecurityView::LinkSecurityView(SheetWindow& sheet, std::shared_ptr<LinkSecurityPage> page)
    : PageView(sheet, page, ID_PAGE_SECURITY, TextId::PageSecurity), m_page(std::move(page)) {}

void LinkSecurityView::ShowPage() {
    const bool isThere = m_page->IsThere();
    const AuthenticationMethods& methods = m_page->Wanted().methods;
    SetText(ID_SECURITY_STATUS, m_page->Status());
    SetText(ID_SECURITY_SAVED, m_page->Saved());
    FillChoice(ID_SECURITY_OUTER, MethodWords(m_page->OuterMethods()),
               isThere ? PlaceOf(methods.outer, m_page->OuterMethods()) : -1);
    FillChoice(ID_SECURITY_INNER, MethodWords(m_page->InnerMethods()),
               isThere ? PlaceOf(methods.inner, m_page->InnerMethods()) : -1);
    SetText(ID_SECURITY_KIND, isThere ? m_page->KeyKind() : std::wstring());
    Tick(ID_SECURITY_RANDOM_MAC, methods.randomMac);
    for (const int id : {ID_SECURITY_OUTER, ID_SECURITY_KIND, ID_SECURITY_RANDOM_MAC, ID_SECURITY_RELOAD}) {
        Enable(id, isThere);
    }
    ShowCredentials();
}

void LinkSecurityView::ShowCredentials() {
    const Authentication& wanted = m_page->Wanted();
    SetText(ID_SECURITY_USER, wanted.userName);
    if (!m_page->IsPasswordTyped()) {
        Forget(ID_SECURITY_PASSWORD);
    }
    SetText(ID_SECURITY_PASSWORD_WORDS,
            !m_page->IsThere() ? std::wstring()
                               : Say(m_page->HasPassword() ? TextId::SecretSet : TextId::SecretNotSet));
    Tick(ID_SECURITY_MACHINE, wanted.machineCredentials);
    SetText(ID_SECURITY_DOMAIN, wanted.machineDomainName);
    Tick(ID_SECURITY_WINDOWS, wanted.windowsCredentials != 0);
    Tick(ID_SECURITY_AUTO_PAC, wanted.autoPac);
    SetText(ID_SECURITY_PAC, wanted.pac);
    for (const int id : {ID_SECURITY_INNER, ID_SECURITY_USER, ID_SECURITY_PASSWORD, ID_SECURITY_MACHINE,
                         ID_SECURITY_WINDOWS}) {
        Enable(id, m_page->UsesCredentials());
    }
    Enable(ID_SECURITY_AUTO_PAC, m_page->UsesPac());
    Enable(ID_SECURITY_PAC, m_page->UsesPac());
}

void LinkSecurityView::OnControl(int id, unsigned code) {
    if (code == EN_CHANGE) {
        Type(id);
    } else if (code == BN_CLICKED) {
        Click(id);
    } else if (code != CBN_SELCHANGE || Chosen(id) < 0) {
        return;
    } else if (id == ID_SECURITY_OUTER) {
        m_page->Edit([method = m_page->OuterMethods().at(std::size_t(Chosen(id)))](Authentication& of) {
            of.methods.outer = method;
        });
    } else if (id == ID_SECURITY_INNER) {
        m_page->Edit([method = m_page->InnerMethods().at(std::size_t(Chosen(id)))](Authentication& of) {
            of.methods.inner = method;
        });
    }
}

void LinkSecurityView::Type(int id) {
    if (id == ID_SECURITY_PASSWORD) {
        m_page->TypePassword(SecretOf(id));
    } else if (id == ID_SECURITY_KIND) {
        m_page->TypeKeyKind(TextOf(id));
    } else if (id == ID_SECURITY_USER) {
        m_page->Edit([text = TextOf(id)](Authentication& of) { of.userName = text; });
    } else if (id == ID_SECURITY_PAC) {
        m_page->Edit([text = TextOf(id)](Authentication& of) { of.pac = text; });
    }
}

void LinkSecurityView::Click(int id) {
    const bool isTicked = IsTicked(id);
    if (id == ID_SECURITY_RELOAD) {
        m_page->SetReload(isTicked);
    } else if (id == ID_SECURITY_MACHINE) {
        m_page->Edit([isTicked](Authentication& of) { of.machineCredentials = isTicked; });
    } else if (id == ID_SECURITY_WINDOWS) {
        m_page->Edit([isTicked](Authentication& of) { of.windowsCredentials = isTicked ? 1 : 0; });
    } else if (id == ID_SECURITY_AUTO_PAC) {
        m_page->Edit([isTicked](Authentication& of) { of.autoPac = isTicked; });
    } else if (id == ID_SECURITY_RANDOM_MAC) {
        m_page->Edit([isTicked](Authentication& of) { of.methods.randomMac = isTicked; });
    }
}

bool LinkSecurityView::OnMessage(UINT message, WPARAM, LPARAM) {
    if (message == WM_DESTROY) {
        const Filling filling(*this);
        Forget(ID_SECURITY_PASSWORD);
    }
    return false;
}

} // namespace quillet::pages
