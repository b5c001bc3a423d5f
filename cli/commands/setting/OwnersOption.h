// Whose settings a command is about, where it may be about several owners.
#pragma once

#include "app/Syntax.h"
#include "names/SettingOwner.h"

#include <string>
#include <vector>

namespace quilletctl {

/// The owner is the first of the command's words: one, those that a pattern names or, with --all-adapters
/// instead of it, every adapter.
class OwnersOption {
  public:
    void Declare(Syntax& syntax);
    /// Takes the owner from the words. Throws UsageError.
    void Take(std::vector<std::string>& words);

    bool IsAllAdapters() const noexcept { return m_allAdapters; }
    bool AreSeveral() const;
    /// Throws UsageError where a name or a pattern names none, and Refusal.
    std::vector<SettingOwner> Find(quillet::Session& session) const;

  private:
    bool m_allAdapters = false;
    std::string m_kind;
    std::string m_owner;
};

} // namespace quilletctl
