// Manually entered keys of link security.
#pragma once

#include "model/Page.h"

#include <array>

namespace quillet::pages {

/// The page "Link security keys" of an adapter. The machine's keys do not get into it: it only knows which of
/// them are set. What was typed is overwritten when it is applied, and when the page goes.
class KeysPage : public Page {
  public:
    explicit KeysPage(AdapterId adapter) : m_adapter(std::move(adapter)) {}

    enum Text : std::size_t { OutFirst, OutSecond, OutChannel, InFirst, InSecond, InChannel, TextCount };
    enum Flag : std::size_t { IncludeChannel, Encryption, RandomMac, FlagCount };
    enum Key : std::size_t { OutKey, InKey, Master, KeyCount };

    Job Reading() override;
    bool IsChanged() const override;
    std::wstring Mistake() const override;
    Change Changes() const override;
    void Settle() override;

    /// Whether the adapter has link security.
    bool IsThere() const noexcept { return m_isThere; }
    /// Why nothing can be entered; empty where it can.
    std::wstring WhyNot() const;
    const std::wstring& TextOf(Text which) const { return m_wanted.texts.at(which); }
    bool FlagOf(Flag which) const { return m_wanted.flags.at(which); }
    /// What stands beside a key's field: whether one is set on the machine.
    std::wstring KeyWords(Key which) const;
    bool IsTyped(Key which) const { return !m_typed.at(which).IsEmpty(); }

    void Type(Text which, const std::wstring& text);
    void Tick(Flag which, bool isTicked);
    void Type(Key which, Secret key);
    void SetReload(bool isWanted) { m_reload = isWanted ? Reload::Driver : Reload::No; }

  private:
    struct Entered {
        std::array<std::wstring, TextCount> texts;
        std::array<bool, FlagCount> flags{};
    };
    struct Read;

    void Take(const Read& now, std::wstring notice);
    bool AreManualKeysChanged() const;
    bool IsMasterKeyChanged() const;

    AdapterId m_adapter;
    bool m_isThere = false;
    Entered m_read;
    Entered m_wanted;
    std::array<bool, KeyCount> m_isSet{};
    std::array<Secret, KeyCount> m_typed;
    Reload m_reload = Reload::No;
};

} // namespace quillet::pages
