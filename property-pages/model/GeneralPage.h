// What an adapter is, and whether it has a link.
#pragma once

#include "model/Page.h"

namespace quillet::pages {

/// A line of a list: what, and what of it.
struct Fact {
    std::wstring name;
    std::wstring value;
    friend bool operator==(const Fact&, const Fact&) = default;
};

/// The page "General" of an adapter.
class GeneralPage : public Page {
  public:
    explicit GeneralPage(AdapterId adapter) : m_adapter(std::move(adapter)) {}

    Job Reading() override;

    /// The adapter's display name.
    const std::wstring& Name() const noexcept { return m_name; }
    /// "up, 10 Gbit/s, full duplex".
    const std::wstring& Link() const noexcept { return m_link; }
    /// The state in the provider's words.
    const std::wstring& State() const noexcept { return m_state; }
    /// What is worth knowing, a line each.
    const std::vector<Fact>& Facts() const noexcept { return m_facts; }
    /// Whether the adapter can show where it is.
    bool CanBlink() const noexcept { return m_canBlink; }
    /// Lets it blink. A failure is for the page's notice.
    Job Blinking(std::chrono::seconds duration);

    /// The shortest and the longest time to blink.
    static constexpr int kShortestBlink = 1;
    static constexpr int kLongestBlink = 600;

  private:
    struct Read;

    void Take(const Read& read);

    AdapterId m_adapter;
    std::wstring m_name;
    std::wstring m_link;
    std::wstring m_state;
    std::vector<Fact> m_facts;
    bool m_canBlink = false;
};

} // namespace quillet::pages
