// The state of a machine as a document, and bringing a machine to the state of one.
#pragma once

#include <quillet-state/Plan.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quillet::state {

/// How adapters are named in a document that is made.
enum class NamedBy { Name, Slot, Mac };

struct ShowOptions {
    NamedBy by = NamedBy::Name;
    bool onlyChanged = false;         ///< only the settings that differ from their defaults
    std::vector<std::string> match{}; ///< patterns of names of adapters and teams; none: all
};

/// A machine's state as a document.
struct Shown {
    Json document;
    std::vector<std::string> unread; ///< what the provider did not tell, a sentence each
};

/// Describes a machine, so that the document applied to it changes nothing. Throws Error where adapters or
/// teams cannot be listed.
Shown Show(Session& session, const ShowOptions& options = {});

/// What the machine has of all that a document mentions, in the document's own terms: where nothing differs
/// it is the same document. Throws Error, and DocumentError for a document that does not fit the machine.
Json ShowLike(Session& session, const Document& document);

struct ApplyOptions {
    bool goBack = true; ///< to what was before, where the document could not be reached
    std::function<void(const Step& step)> begins{};
    std::function<bool()> mayGoOn{};     ///< asked before each step; empty: yes
    std::function<bool()> isConfirmed{}; ///< asked when all was done; no goes back. Empty: yes
};

/// How it went.
struct Outcome {
    std::size_t done = 0;                   ///< how many steps were made
    std::optional<std::string> failure{};   ///< why the next one was not, in a sentence
    std::optional<std::int32_t> code{};     ///< the provider's, where it has one
    std::optional<bool> restartNeeded{};    ///< nothing: it could not be told
    std::vector<std::string> differences{}; ///< what did not take though it was accepted
    bool isRefused = false;                 ///< whether the confirmation did not come
    bool wentBack = false;
    std::vector<std::string> notRestored{}; ///< after going back: what is not as it was

    bool IsReached() const noexcept { return !failure && differences.empty() && !isRefused; }
};

/// Makes the steps of a plan in one client set, reads the machine again and compares. A plan without steps
/// asks the provider for nothing. Throws Error where nothing was changed yet, and DocumentError for a plan
/// with problems.
Outcome Apply(Session& session, const Document& document, const Plan& plan, const ApplyOptions& options = {});

} // namespace quillet::state
