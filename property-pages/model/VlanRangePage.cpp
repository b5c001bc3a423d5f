// Several VLANs at once.
#include "model/VlanRangePage.h"

#include "model/Words.h"

namespace quillet::pages {

namespace {

/// Stands for the VLAN's ID in a pattern of names.
constexpr wchar_t kIdMark = L'#';

std::wstring NameOf(const std::wstring& pattern, std::int32_t number) {
    std::wstring name;
    for (const wchar_t character : pattern) {
        name += character == kIdMark ? std::to_wstring(number) : std::wstring(1, character);
    }
    return pattern.find(kIdMark) != std::wstring::npos ? name : name + L" " + std::to_wstring(number);
}

} // namespace

Job VlanRangePage::Reading() {
    return [page = Self<VlanRangePage>(), id = m_parentId](Session& session, const Asking&) -> Answer {
        std::wstring notice;
        VlanParent parent = ReadVlanParent(session, id, notice);
        return [page, parent = std::move(parent), notice] {
            page->m_parent = parent;
            page->m_opinion.Forget();
            page->NoteRead(parent.WhyNot().empty() ? notice : parent.WhyNot());
        };
    };
}

std::vector<NewVlan> VlanRangePage::Wanted() const {
    const std::int32_t first = ToVlanNumber(m_entry.first).value_or(0);
    const std::int32_t last = ToVlanNumber(m_entry.last).value_or(0);
    std::vector<NewVlan> wanted;
    if (first < kFirstVlan || last > kLastVlan || m_entry.pattern.empty()) {
        return wanted;
    }
    for (std::int32_t number = first; number <= last; ++number) {
        wanted.push_back({number, NameOf(m_entry.pattern, number)});
    }
    return wanted;
}

std::wstring VlanRangePage::Preview() const {
    const std::vector<NewVlan> wanted = Wanted();
    if (wanted.empty()) {
        return {};
    }
    return wanted.size() == 1 ? Say(TextId::RangeOfOne, {wanted.front().name})
                              : Say(TextId::RangeOfSeveral, {std::to_wstring(wanted.size()),
                                                             wanted.front().name, wanted.back().name});
}

std::wstring VlanRangePage::Mistake() const {
    if (!m_parent.WhyNot().empty()) {
        return m_parent.WhyNot();
    }
    const auto first = ToVlanNumber(m_entry.first);
    const auto last = ToVlanNumber(m_entry.last);
    const auto isNoId = [](const std::wstring& text, const std::optional<std::int32_t>& number) {
        return !text.empty() && (number.value_or(0) < kFirstVlan || number.value_or(0) > kLastVlan);
    };
    if (isNoId(m_entry.first, first) || isNoId(m_entry.last, last)) {
        return InOwnLanguage(Texts(VlanProblem::IdOutOfRange));
    }
    if (first && last && *last < *first) {
        return Say(TextId::RangeBackwards);
    }
    if (first && last && m_entry.pattern.empty()) {
        return Say(TextId::NameNeeded);
    }
    const Flags<VlanProblem>* found = m_opinion.Of(m_entry);
    return found != nullptr ? InOwnLanguage(Texts(*found)) : std::wstring();
}

Job VlanRangePage::Checking() {
    const std::vector<NewVlan> wanted = Wanted();
    if (!CanEdit() || wanted.empty()) {
        return nullptr;
    }
    return m_opinion.Question(shared_from_this(), m_entry,
                              [parent = m_parentId, wanted](Session& session, const VlanRangeEntry&) {
                                  return session.CheckVlans(parent, wanted);
                              });
}

Job VlanRangePage::Making(std::function<void(const Made&)> done) {
    m_done = 0;
    m_total = Wanted().size();
    NoteChange();
    return [page = Self<VlanRangePage>(), parent = m_parentId, wanted = Wanted(),
            done = std::move(done)](Session& session, const Asking& asking) -> Answer {
        Made made;
        std::wstring reason;
        try {
            reason = InOwnLanguage(Texts(session.CheckVlans(parent, wanted)));
            if (reason.empty()) {
                Transaction transaction(session);
                for (const NewVlan& vlan : wanted) {
                    if (asking.Stop().stop_requested()) {
                        reason = Say(TextId::RangeStopped);
                        break;
                    }
                    try {
                        session.AddVlan(parent, vlan);
                    } catch (const Error& refusal) {
                        reason = Reason(refusal);
                        break;
                    }
                    ++made.count;
                    asking.Show([page, count = made.count] {
                        page->m_done = count;
                        page->NoteChange();
                    });
                }
                made.restartNeeded = transaction.Apply().restartNeeded;
            }
        } catch (const Error& error) {
            reason = Reason(error);
        }
        made.isAll = reason.empty() && made.count == wanted.size();
        return [page, made, reason, done] {
            page->End(made, reason);
            done(made);
        };
    };
}

void VlanRangePage::End(const Made& made, const std::wstring& reason) {
    const std::wstring total = std::to_wstring(m_total);
    if (const auto first = ToVlanNumber(m_entry.first); first && made.count < m_total) {
        m_entry.first = std::to_wstring(*first + std::int32_t(made.count));
    }
    m_total = 0;
    m_opinion.Forget();
    SetNotice(made.isAll ? std::wstring()
                         : Say(TextId::RangeInPart, {std::to_wstring(made.count), total, reason}));
}

void VlanRangePage::NoteFailure(const std::wstring& reason) {
    m_total = 0;
    SetNotice(Say(TextId::NotDone, {reason}));
}

void VlanRangePage::Type(std::wstring& field, const std::wstring& text) {
    field = text;
    SetNotice({}); // it was about what was entered before
}

void VlanRangePage::TypeFirst(const std::wstring& text) {
    Type(m_entry.first, text);
}

void VlanRangePage::TypeLast(const std::wstring& text) {
    Type(m_entry.last, text);
}

void VlanRangePage::TypePattern(const std::wstring& text) {
    Type(m_entry.pattern, text);
}

} // namespace quillet::pages
