// The boot agent of an adapter, and booting from iSCSI.
#include "model/BootPage.h"

#include <quillet/client/Text.h>

#include <algorithm>
#include <array>
#include <cwctype>
#include <stdexcept>

namespace quillet::pages {

namespace {

constexpr std::array kPlaces{IscsiStatus::NotBootPort, IscsiStatus::PrimaryPort, IscsiStatus::SecondaryPort};

bool IsSame(const std::wstring& left, const std::wstring& right) {
    const auto upper = [](wchar_t character) { return std::towupper(static_cast<std::wint_t>(character)); };
    return std::ranges::equal(left, right, {}, upper, upper);
}

} // namespace

struct BootPage::Read {
    std::optional<BootAgent> agent;
    std::optional<IscsiSupport> support;
    BootAgentId port;
    std::vector<IscsiAdapter> others;
    std::optional<IscsiStatus> place;
};

Job BootPage::Reading() {
    return [page = Self<BootPage>(), id = m_adapter](Session& session, const Asking&) -> Answer {
        std::wstring notice;
        Read read;
        read.agent = ReadUnlessMissing([&] { return session.ReadBootAgent(id); }, notice);
        read.support = ReadUnlessMissing([&] { return session.ReadIscsiSupport(id); }, notice);
        const std::wstring own = session.ObjectIdOf(id);
        for (IscsiAdapter& port : ReadIfThere([&] { return session.IscsiAdapters(); }, notice)
                                      .value_or(std::vector<IscsiAdapter>())) {
            if (IsSame(port.objectId, own)) {
                read.port = port.bootAgent;
                read.place = port.status;
            } else {
                read.others.push_back(std::move(port));
            }
        }
        return [page, read = std::move(read), notice] { page->Take(read, notice); };
    };
}

void BootPage::Take(const Read& read, std::wstring notice) {
    if (Leave(notice)) {
        return;
    }
    m_agent = read.agent;
    m_port = read.port;
    m_others = read.others;
    TakePlace(read.place, notice);
    TakeFacts(read);
    NoteRead(std::move(notice));
}

void BootPage::TakePlace(const std::optional<IscsiStatus>& now, std::wstring& notice) {
    if (TakeOver(m_readPlace, m_place, now) && now) {
        NoteDispute();
        notice = Say(TextId::ChangedMeanwhile, {Say(TextId::BootPlaceName), PlaceWords(*now)});
    }
    if (!now) {
        m_place.reset();
    }
    m_readPlace = now;
}

void BootPage::TakeFacts(const Read& read) {
    m_facts.clear();
    const auto add = [this](TextId name, std::wstring value) {
        m_facts.push_back({Say(name), value.empty() ? Say(TextId::NoneTicked) : std::move(value)});
    };
    const auto yesOrNo = [](bool is) { return Say(is ? TextId::Yes : TextId::No); };
    if (read.agent) {
        std::wstring installed;
        for (const std::wstring& type : ImageTypes(read.agent->installedImageTypes)) {
            installed += (installed.empty() ? L"" : L", ") + type;
        }
        add(TextId::BootVersion, read.agent->version);
        add(TextId::BootImage, read.agent->imageTypeText);
        add(TextId::BootInstalled, installed);
        add(TextId::BootUpdate, yesOrNo(read.agent->updateAvailable));
    }
    if (read.support) {
        add(TextId::IscsiSystem, yesOrNo(read.support->byOperatingSystem));
        add(TextId::IscsiPatch, yesOrNo(read.support->patchPresent));
        add(TextId::IscsiHotFix, yesOrNo(read.support->hotFixPresent));
    }
}

bool BootPage::IsChanged() const {
    return m_place != m_readPlace;
}

Change BootPage::Changes() const {
    Change change;
    change.write = [port = m_port, place = Place()](Session& session) {
        if (const unsigned verdict = session.SetIscsiStatus(port, place); verdict != 0) {
            throw std::runtime_error(ToUtf8(Say(TextId::IscsiRefused, {std::to_wstring(verdict)})));
        }
    };
    const auto rival = std::ranges::find(m_others, m_place, &IscsiAdapter::status);
    if (m_place == IscsiStatus::PrimaryPort && rival != m_others.end()) {
        change.warnings.push_back(Say(TextId::IscsiRival, {rival->adapterName}));
    }
    return change;
}

std::vector<IscsiStatus> BootPage::Places() const {
    std::vector<IscsiStatus> places(kPlaces.begin(), kPlaces.end());
    if (m_readPlace && std::ranges::find(places, *m_readPlace) == places.end()) {
        places.push_back(*m_readPlace);
    }
    return places;
}

std::wstring BootPage::PlaceWords(IscsiStatus place) {
    switch (place) {
    case IscsiStatus::NotBootPort:
        return Say(TextId::Off);
    case IscsiStatus::PrimaryPort:
        return Say(TextId::IscsiPrimary);
    case IscsiStatus::SecondaryPort:
        return Say(TextId::IscsiSecondary);
    }
    return Say(TextId::CodeNumber, {std::to_wstring(static_cast<std::int32_t>(place))});
}

void BootPage::SetPlace(IscsiStatus place) {
    if (m_place) {
        m_place = place;
        NoteChange();
    }
}

std::wstring BootPage::WhyNoIscsi() const {
    if (!IsRead() || HasIscsi()) {
        return {};
    }
    return Say(HasAgent() ? TextId::IscsiNone : TextId::BootNone);
}

} // namespace quillet::pages
