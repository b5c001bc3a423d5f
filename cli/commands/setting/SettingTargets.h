// Settings of one or several owners that are to have other values.
#pragma once

#include "changes/Targets.h"
#include "changes/Wait.h"
#include "names/SettingOwner.h"

#include <optional>
#include <string>
#include <vector>

namespace quilletctl {

/// A setting by its name, and the value that it is to have.
struct Assignment {
    std::string setting;
    std::optional<std::string> value; ///< as it was typed; nothing: the setting's default
};

/// How the targets of a command are told.
enum class ToldBy {
    Owners,  ///< by their owners, for all are about one setting
    Settings ///< by owner and setting
};

class SettingTargets {
  public:
    /// @param isOfSeveral whether the command is about several owners: one without the setting, or with one
    /// that is read only, is passed over then
    SettingTargets(Invocation& run, bool isOfSeveral, ToldBy told) noexcept
        : m_run(run), m_isOfSeveral(isOfSeveral), m_told(told) {}

    /// Throws UsageError where an owner that was meant has no such setting, and Refusal.
    void Add(const SettingOwner& owner, const std::vector<Assignment>& assignments);
    /// Adds every setting that can be written and has another value than its default. Throws Refusal.
    void AddDiffering(const SettingOwner& owner);
    bool IsEmpty() const noexcept { return m_wanted.empty(); }
    /// The caption of the first setting that an owner has; empty where none has any.
    std::string Caption() const;

    /// Asks the teams and the VLANs what they think of it, and changes them all (ChangeTargets).
    ExitStatus Change(const WaitOption& wait, const Json& answer = Json::object());

  private:
    struct Wanted {
        SettingOwner owner;
        std::string caption;                     ///< as it was typed where the owner has none
        std::optional<quillet::Setting> setting; ///< with the new value; nothing where there is none to write
        Target target;
    };

    void AddAll(const SettingOwner& owner, const std::vector<quillet::Setting>& settings,
                const std::vector<Assignment>& assignments);
    void AddOne(const SettingOwner& owner, const std::vector<quillet::Setting>& settings,
                const Assignment& assignment);
    /// @param value as messages call it
    void Want(Wanted& wanted, const quillet::Setting& setting, const quillet::Setting& changed,
              const std::string& value) const;
    void Check(Wanted& wanted);
    /// What a change may take down.
    std::vector<Watched> WatchedOnes() const;

    Invocation& m_run;
    bool m_isOfSeveral;
    ToldBy m_told;
    std::vector<Wanted> m_wanted;
};

} // namespace quilletctl
