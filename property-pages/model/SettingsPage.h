// Advanced settings: a list of them, and an editor for the one that is chosen.
#pragma once

#include "model/Page.h"

#include <map>
#include <variant>

namespace quillet::pages {

/// Whose settings; `BootAgentOf` are those of an adapter's boot agent, which is looked for when they are
/// read.
struct BootAgentOf {
    AdapterId adapter;
};
using SettingsOwner = std::variant<AdapterId, TeamId, VlanId, BootAgentId, BootAgentOf>;

/// What a setting is edited with.
enum class Editor { None, Number, Choice, Slider, Text, Selection, Lines };

/// The page "Advanced" of whatever has settings.
class SettingsPage : public Page {
  public:
    explicit SettingsPage(SettingsOwner owner) : m_owner(std::move(owner)) {}

    Job Reading() override;
    bool IsChanged() const override;
    std::wstring Mistake() const override;
    Change Changes() const override;

    /// The settings as the user wants them.
    const std::vector<Setting>& Settings() const noexcept { return m_wanted; }
    /// The setting of the performance profile: values for all the others by their purpose. Null where there
    /// is none that could be chosen.
    const Setting* Profile() const noexcept;
    /// Chooses the profile: its setting, and its value.
    void PickProfile(std::size_t choice);
    /// Whether the adapter has the profile for hosts of virtual machines, which others may have as well.
    bool HasHyperVProfile() const noexcept;
    /// The profile that the user wants in its place; null: none yet.
    const ChoiceValue* Replacement() const noexcept;
    /// What the user should know before it is replaced on all adapters.
    std::wstring ReplacementQuestion() const;
    /// Replaces it on all adapters at once.
    Job ReplacingEverywhere();
    /// The setting that is chosen; null where there is none.
    const Setting* Chosen() const noexcept;
    /// Its place in the list.
    std::size_t ChosenIndex() const noexcept { return m_chosen; }
    void Choose(std::size_t index);

    /// What the list shows of a setting's value.
    std::wstring ValueText(const Setting& setting) const;
    /// Whether the user has changed it.
    bool IsChanged(const Setting& setting) const;
    /// Whether it has its default value.
    static bool IsStandard(const Setting& setting);
    /// The editor of the chosen setting; none for one that may only be read.
    Editor ChosenEditor() const;
    /// The help text of the chosen setting, and what values it may have.
    std::wstring Help() const;
    /// What stands in the editor of a number, a text or lines: as it was typed.
    std::wstring TypedText() const;

    /// @name What the user does with the chosen setting
    /// @{
    void Type(const std::wstring& text);          ///< a number, a text or lines
    void Pick(std::size_t choice);                ///< a choice, or a place on the slider
    void Tick(std::size_t choice, bool isTicked); ///< one of a selection
    void Default();                               ///< its default value
    /// @}
    /// Gives all settings that can be written their default values.
    void DefaultAll();

  private:
    const Setting* ReadOne(const Setting& wanted) const;
    Setting* ChosenToChange();
    void ToStandard(Setting& setting);
    void Take(std::vector<Setting> now, std::wstring notice);
    static std::wstring Objection(Session& session, const SettingsOwner& owner, const Setting& setting);

    SettingsOwner m_owner;
    std::vector<Setting> m_read;
    std::vector<Setting> m_wanted;
    std::map<std::wstring, std::wstring> m_mistyped; ///< by keyword: what is no value
    bool m_isAloneWithJumboFrames = false;
    std::size_t m_chosen = 0;
};

} // namespace quillet::pages
