// The controls of a VLAN, on a page of a sheet and in a dialog of their own.
#pragma once

#include "model/VlanPage.h"
#include "resources/Ids.h"
#include "window/OnePageDialog.h"
#include "window/PageView.h"

namespace quillet::pages {

/// @tparam Base PageView or OnePageDialog
template <class Base>
class VlanFields : public Base {
  public:
    template <class Host, class Title>
    VlanFields(Host& host, std::shared_ptr<VlanPage> page, unsigned templateId, const Title& title)
        : Base(host, page, templateId, title), m_page(std::move(page)) {}

  private:
    void ShowPage() override {
        const VlanEntry& entry = m_page->Entry();
        this->SetText(ID_VLAN_PARENT, m_page->Parent().name);
        this->SetText(ID_VLAN_ID, entry.isUntagged ? L"" : entry.id);
        this->SetText(ID_VLAN_NAME, entry.name);
        this->Tick(ID_VLAN_UNTAGGED, entry.isUntagged);
        this->SetText(ID_VLAN_ID_PROBLEM, m_page->IdProblem());
        this->SetText(ID_VLAN_NAME_PROBLEM, m_page->NameProblem());
        this->SetText(ID_VLAN_STATUS, m_page->Status()); // a new VLAN has none, nor such a control
        this->Enable(ID_VLAN_UNTAGGED, m_page->CanEdit());
        this->Enable(ID_VLAN_ID, m_page->CanEdit() && !entry.isUntagged);
        this->Enable(ID_VLAN_NAME, m_page->CanEdit());
    }
    void OnControl(int id, unsigned code) override {
        if (id == ID_VLAN_ID && code == EN_CHANGE) {
            m_page->TypeId(this->TextOf(id));
        } else if (id == ID_VLAN_NAME && code == EN_CHANGE) {
            m_page->TypeName(this->TextOf(id));
        } else if (id == ID_VLAN_UNTAGGED && code == BN_CLICKED) {
            m_page->MakeUntagged(this->IsTicked(id));
        }
    }

    std::shared_ptr<VlanPage> m_page;
};

using VlanView = VlanFields<PageView>;
using VlanDialog = VlanFields<OnePageDialog>;

} // namespace quillet::pages
