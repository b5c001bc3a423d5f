// Manually entered keys of link security.
#include "model/KeysPage.h"

#include "model/LinkSecurityPage.h"

#include <algorithm>

namespace quillet::pages {

namespace {

/// A key that was typed replaces the one that is there; nothing typed leaves it.
void Replace(Secret& key, const Secret& typed) {
    if (!typed.IsEmpty()) {
        key = typed;
    }
}

} // namespace

struct KeysPage::Read {
    bool isThere = false;
    Entered entered;
    std::array<bool, KeyCount> isSet{};
};

Job KeysPage::Reading() {
    return [page = Self<KeysPage>(), id = m_adapter](Session& session, const Asking&) -> Answer {
        std::wstring notice;
        Read read;
        const auto keys = ReadUnlessMissing([&] { return session.ReadManualKeys(id); }, notice);
        const auto master = ReadUnlessMissing([&] { return session.ReadMasterKey(id); }, notice);
        read.isThere = keys && master;
        if (read.isThere) {
            read.entered.texts = {std::to_wstring(keys->outgoing.firstNumber),
                                  std::to_wstring(keys->outgoing.secondNumber),
                                  keys->outgoing.channelId,
                                  std::to_wstring(keys->incoming.firstNumber),
                                  std::to_wstring(keys->incoming.secondNumber),
                                  keys->incoming.channelId};
            read.entered.flags = {keys->includeChannelId, keys->encryption, master->randomMac};
            read.isSet = {!keys->outgoing.key.IsEmpty(), !keys->incoming.key.IsEmpty(),
                          !master->key.IsEmpty()};
        }
        return [page, read, notice] { page->Take(read, notice); };
    };
}

void KeysPage::Take(const Read& now, std::wstring notice) {
    if (Leave(notice)) {
        return;
    }
    if (!now.isThere) {
        // What cannot be read just now was there before, and what was typed stays.
        m_isThere = m_isThere && !notice.empty();
        NoteRead(std::move(notice));
        return;
    }
    if (!std::exchange(m_isThere, true)) {
        m_wanted = m_read = now.entered;
    }
    m_isSet = now.isSet;
    bool isDisputed = false;
    for (std::size_t text = 0; text < TextCount; ++text) {
        isDisputed |= TakeOver(m_read.texts[text], m_wanted.texts[text], now.entered.texts[text]);
    }
    for (std::size_t flag = 0; flag < FlagCount; ++flag) {
        isDisputed |= TakeOver(m_read.flags[flag], m_wanted.flags[flag], now.entered.flags[flag]);
    }
    m_read = now.entered;
    if (isDisputed) {
        NoteDispute();
        notice = Say(TextId::SomethingChanged);
    }
    NoteRead(std::move(notice));
}

bool KeysPage::AreManualKeysChanged() const {
    return m_read.texts != m_wanted.texts || m_read.flags[IncludeChannel] != m_wanted.flags[IncludeChannel] ||
           m_read.flags[Encryption] != m_wanted.flags[Encryption] || IsTyped(OutKey) || IsTyped(InKey);
}

bool KeysPage::IsMasterKeyChanged() const {
    return m_read.flags[RandomMac] != m_wanted.flags[RandomMac] || IsTyped(Master);
}

bool KeysPage::IsChanged() const {
    return m_isThere && (AreManualKeysChanged() || IsMasterKeyChanged());
}

std::wstring KeysPage::Mistake() const {
    for (const Text text : {OutFirst, OutSecond, InFirst, InSecond}) {
        if (!WholeNumber(TextOf(text))) {
            return Say(TextId::NoNumber, {TextOf(text)});
        }
    }
    return {};
}

Change KeysPage::Changes() const {
    Change change;
    const auto writeKeys = [id = m_adapter, wanted = m_wanted, out = m_typed[OutKey], in = m_typed[InKey],
                            reload = m_reload](Session& session) {
        // All of it is set together: a key that is to stay is sent as it is.
        ManualKeys keys = session.ReadManualKeys(id);
        Replace(keys.outgoing.key, out);
        Replace(keys.incoming.key, in);
        keys.outgoing.firstNumber = WholeNumber(wanted.texts[OutFirst]).value_or(0);
        keys.outgoing.secondNumber = WholeNumber(wanted.texts[OutSecond]).value_or(0);
        keys.outgoing.channelId = wanted.texts[OutChannel];
        keys.incoming.firstNumber = WholeNumber(wanted.texts[InFirst]).value_or(0);
        keys.incoming.secondNumber = WholeNumber(wanted.texts[InSecond]).value_or(0);
        keys.incoming.channelId = wanted.texts[InChannel];
        keys.includeChannelId = wanted.flags[IncludeChannel];
        keys.encryption = wanted.flags[Encryption];
        session.SetManualKeys(id, keys, reload);
    };
    const auto writeMaster = [id = m_adapter, typed = m_typed[Master], randomMac = m_wanted.flags[RandomMac],
                              reload = m_reload](Session& session) {
        MasterKey master = session.ReadMasterKey(id);
        Replace(master.key, typed);
        master.randomMac = randomMac;
        session.SetMasterKey(id, master, reload);
    };
    change.write = [writeKeys, writeMaster, keys = AreManualKeysChanged(),
                    master = IsMasterKeyChanged()](Session& session) {
        if (keys) {
            writeKeys(session);
        }
        if (master) {
            writeMaster(session);
        }
    };
    if (m_reload == Reload::Driver) {
        change.warnings.push_back(Say(TextId::ReloadInterrupts));
    }
    return change;
}

void KeysPage::Settle() {
    for (Secret& typed : m_typed) {
        typed.Clear();
    }
}

std::wstring KeysPage::WhyNot() const {
    return IsRead() && !m_isThere ? Say(TextId::NoLinkSecurity) : std::wstring();
}

std::wstring KeysPage::KeyWords(Key which) const {
    return m_isThere ? Say(m_isSet.at(which) ? TextId::SecretSet : TextId::SecretNotSet) : std::wstring();
}

void KeysPage::Type(Text which, const std::wstring& text) {
    m_wanted.texts.at(which) = text;
    NoteChange();
}

void KeysPage::Tick(Flag which, bool isTicked) {
    m_wanted.flags.at(which) = isTicked;
    NoteChange();
}

void KeysPage::Type(Key which, Secret key) {
    m_typed.at(which) = std::move(key);
    NoteChange();
}

} // namespace quillet::pages
