// The machine's adapters, and finding the one that the command line names.
#pragma once

#include "ending/Failure.h"
#include "names/NameLookup.h"
#include "texts/Text.h"

#include <quillet/client/Session.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quilletctl {

/// An adapter by all the names it goes by (UTF-8).
struct ListedAdapter {
    quillet::AdapterId id;
    std::string path;     ///< the same as text
    std::string objectId; ///< empty when the path holds none
    std::string name;
    std::string displayName;
    std::string deviceId;

    /// What messages call it: its name, or what there is of one.
    const std::string& Called() const { return name.empty() ? path : name; }
};

/// All adapters, in the provider's order. Throws Refusal.
std::vector<ListedAdapter> ReadAdapters(quillet::Session& session);

/// Where an adapter is: "2:1" for port 1 of "Slot 2". Empty where that is not known.
std::string PlaceText(const std::string& slot, const std::string& port);

/// The adapter as a thing with names.
Named NamesOf(const ListedAdapter& adapter);

/// Finds adapters by their names: object path (also of the boot agent), object ID, device ID, name, or
/// display name where only one adapter has it. Where that names none: slot and port ("Slot 2:1", "2:1"), MAC
/// address, and the caption of a member of a team; these are read then, and once for all that are
/// looked for.
class AdapterFinder {
  public:
    /// Throws Refusal.
    explicit AdapterFinder(quillet::Session& session);

    const std::vector<ListedAdapter>& Adapters() const noexcept { return m_adapters; }
    /// The adapter that a text names. A path that is not among the machine's adapters is taken as it is, for
    /// the provider may know it in another form. Throws UsageError where nothing, or more than one adapter,
    /// is named.
    /// @param others what else might have been meant
    ListedAdapter One(const std::string& text, const std::vector<Named>& others = {});
    /// The adapters that a pattern names; where it has no `*` or `?`, or is a name itself, as One(). Throws
    /// UsageError where it names none.
    std::vector<ListedAdapter> Several(const std::string& text);

  private:
    std::optional<std::size_t> Find(const std::string& text);
    void ReadPlaces();
    void ReadCaptions();
    [[noreturn]] void ThrowUnknown(const std::string& text, std::vector<Named> others = {}) const;

    quillet::Session& m_session;
    std::vector<ListedAdapter> m_adapters;
    std::vector<Named> m_names;
    std::vector<Named> m_places;   ///< empty until they are needed
    std::vector<Named> m_captions; ///< likewise
    std::size_t m_placeless = 0;   ///< adapters that do not tell their places
};

/// AdapterFinder::One().
ListedAdapter FindAdapter(quillet::Session& session, const std::string& text);
/// Which adapters a pattern may choose.
using AdapterChoice = std::function<bool(const ListedAdapter& adapter)>;
/// AdapterFinder::Several() of each text; an adapter that is named again counts once.
/// @param offered what a pattern chooses among; all adapters where it would find none there
std::vector<ListedAdapter> FindAdapters(quillet::Session& session, const std::vector<std::string>& texts,
                                        const AdapterChoice& offered = {});

/// What the session reads of an adapter. Throws Refusal.
/// @param what completes "could not read … of the adapter"
template <class Record>
Record ReadRecord(quillet::Session& session, Record (quillet::Session::*read)(const quillet::AdapterId&),
                  const ListedAdapter& adapter, const char* what) {
    return Attempt(std::string("read ") + what + " of " + adapter.Called(),
                   [&] { return (session.*read)(adapter.id); });
}

} // namespace quilletctl
