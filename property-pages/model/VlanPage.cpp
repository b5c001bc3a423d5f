// One VLAN: its ID and its name.
#include "model/VlanPage.h"

#include "model/Words.h"

#include <algorithm>

namespace quillet::pages {

namespace {

/// The lowest ID that is free; empty where there is none.
std::wstring FreeId(const std::vector<Vlan>& vlans) {
    for (std::int32_t number = kFirstVlan; number <= kLastVlan; ++number) {
        if (std::ranges::find(vlans, number, &Vlan::number) == vlans.end()) {
            return std::to_wstring(number);
        }
    }
    return {};
}

std::wstring TextsOf(Flags<VlanProblem> problems) {
    return InOwnLanguage(Texts(problems));
}

} // namespace

Job VlanPage::Reading() {
    return [page = Self<VlanPage>(), parentId = m_parentId, vlanId = m_vlanId](Session& session,
                                                                               const Asking&) -> Answer {
        std::wstring notice;
        VlanParent parent = ReadVlanParent(session, parentId, notice);
        const Vlan vlan = vlanId.IsEmpty() ? Vlan() : session.ReadVlan(vlanId);
        return [page, parent = std::move(parent), vlan, notice] { page->Take(parent, vlan, notice); };
    };
}

void VlanPage::Take(VlanParent parent, const Vlan& vlan, std::wstring notice) {
    m_parent = std::move(parent);
    m_opinion.Forget();
    VlanEntry now;
    if (IsNew() && IsChanged()) {
        now = m_read; // the ID that was proposed has been seen, and is part of what was entered
    } else if (IsNew()) {
        now.id = FreeId(m_parent.vlans);
    } else {
        m_vlan = vlan;
        m_status = InOwnLanguage(Text(vlan.status));
        now = {vlan.number == 0 ? FreeId(m_parent.vlans) : std::to_wstring(vlan.number), vlan.name,
               vlan.number == 0};
    }
    const auto note = [&](bool isDisputed, TextId field, const std::wstring& value) {
        if (isDisputed) {
            NoteDispute();
            notice = Say(TextId::ChangedMeanwhile, {Say(field), value});
        }
    };
    note(TakeOver(m_read.name, m_wanted.name, now.name), TextId::FieldName, now.name);
    note(TakeOver(m_read.id, m_wanted.id, now.id), TextId::FieldVlanId, now.id);
    note(TakeOver(m_read.isUntagged, m_wanted.isUntagged, now.isUntagged), TextId::FieldVlanId, now.id);
    m_read = now;
    NoteRead(m_parent.WhyNot().empty() ? std::move(notice) : m_parent.WhyNot());
}

std::int32_t VlanPage::Number() const {
    return m_wanted.isUntagged ? 0 : ToVlanNumber(m_wanted.id).value_or(-1);
}

bool VlanPage::IsChanged() const {
    const bool isSameId = m_wanted.isUntagged || m_wanted.id == m_read.id;
    return !isSameId || m_wanted.isUntagged != m_read.isUntagged || m_wanted.name != m_read.name;
}

std::wstring VlanPage::IdProblem() const {
    if (m_wanted.isUntagged ? false : Number() < kFirstVlan || Number() > kLastVlan) {
        return m_wanted.id.empty() && !IsChanged() ? std::wstring() : TextsOf(VlanProblem::IdOutOfRange);
    }
    const Flags<VlanProblem>* found = m_opinion.Of(m_wanted);
    if (found == nullptr) {
        return {};
    }
    const auto name = static_cast<std::uint64_t>(VlanProblem::NameTaken);
    return TextsOf(Flags<VlanProblem>::FromMask(found->Mask() & ~name));
}

std::wstring VlanPage::NameProblem() const {
    if (m_wanted.name.empty()) {
        return IsChanged() ? Say(TextId::NameNeeded) : std::wstring();
    }
    const Flags<VlanProblem>* found = m_opinion.Of(m_wanted);
    return found != nullptr && found->Has(VlanProblem::NameTaken) ? TextsOf(VlanProblem::NameTaken)
                                                                  : std::wstring();
}

std::wstring VlanPage::Mistake() const {
    for (const std::wstring& problem : {m_parent.WhyNot(), IdProblem(), NameProblem()}) {
        if (!problem.empty()) {
            return problem;
        }
    }
    return {};
}

Flags<VlanProblem> VlanPage::Check(Session& session, const VlanParentId& parent, const Vlan& before,
                                   const NewVlan& wanted) {
    if (before.id.IsEmpty()) {
        return session.CheckVlan(parent, wanted);
    }
    // The untagged VLAN under a new name is in nobody's way: it would only meet itself.
    const bool staysUntagged = before.number == 0 && wanted.id == 0;
    return staysUntagged ? Flags<VlanProblem>() : session.CheckVlanChange(parent, before, wanted);
}

Job VlanPage::Checking() {
    if (!CanEdit() || !IsChanged() || Number() < 0 || m_wanted.name.empty()) {
        return nullptr;
    }
    return m_opinion.Question(
        shared_from_this(), m_wanted,
        [parent = m_parentId, before = m_vlan, number = Number()](Session& session, const VlanEntry& entry) {
            return Check(session, parent, before, {number, entry.name});
        });
}

Change VlanPage::Changes() const {
    const NewVlan wanted{Number(), m_wanted.name};
    return {.write =
                [wanted, parent = m_parentId, vlan = m_vlanId](Session& session) {
                    if (vlan.IsEmpty()) {
                        session.AddVlan(parent, wanted);
                    } else {
                        session.ModifyVlan(vlan, wanted);
                    }
                },
            .check =
                [wanted, parent = m_parentId, before = m_vlan](Session& session) {
                    const VlanSupport support = session.SupportsVlans(parent);
                    return support == VlanSupport::Supported ? TextsOf(Check(session, parent, before, wanted))
                                                             : InOwnLanguage(Text(support));
                }};
}

void VlanPage::Settle() {
    if (IsNew()) {
        m_wanted = m_read; // it is made: the next one may be entered
    }
}

void VlanPage::TypeId(const std::wstring& text) {
    m_wanted.id = text;
    SetNotice({}); // it was about what was entered before
}

void VlanPage::TypeName(const std::wstring& text) {
    m_wanted.name = text;
    SetNotice({}); // it was about what was entered before
}

void VlanPage::MakeUntagged(bool isUntagged) {
    m_wanted.isUntagged = isUntagged;
    SetNotice({}); // it was about what was entered before
}

} // namespace quillet::pages
