// What somebody wants a machine to be like, as a JSON document says it.
#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::state {

/// Keys stay in the order in which they were written.
using Json = nlohmann::ordered_json;

/// A document cannot be used: everything that is wrong with it, a sentence each, with the place in it.
class DocumentError : public std::runtime_error {
  public:
    explicit DocumentError(std::vector<std::string> problems);
    const std::vector<std::string>& Problems() const noexcept { return m_problems; }

  private:
    std::vector<std::string> m_problems;
};

/// Which adapter is meant: one of name, MAC address, place and pattern. Texts are UTF-8.
// NOLINTNEXTLINE(bugprone-exception-escape): moving JSON throws nothing, which its code hides
struct Selector {
    std::string name{}; ///< name, display name, object ID, device ID or object path
    std::string mac{};  ///< however its digits are set apart
    std::string slot{}; ///< "Slot 2" or "2"
    std::string port{}; ///< of the slot; empty where its board has one
    std::string
        match{}; ///< of names, with `*` for any text and `?` for any character: every adapter that fits

    Json written{}; ///< as the document has it; null where it was not read from one

    bool IsPattern() const noexcept { return !match.empty(); }
    /// Whether it names nothing.
    bool IsEmpty() const noexcept { return name.empty() && mac.empty() && slot.empty() && match.empty(); }
    /// For people: "slot 2, port 1".
    std::string Text() const;
};

/// A VLAN under its adapter or team.
struct WantedVlan {
    std::int32_t id = 0;               ///< the VLAN ID; 0 for the untagged one
    std::optional<std::string> name{}; ///< nothing: as it is
    bool isAbsent = false;
    Json settings = Json::object(); ///< values by caption
};

/// An adapter. What is null, empty or nothing stays as it is.
struct WantedAdapter {
    Selector selector{};
    Json settings = Json::object();  ///< values by caption
    Json profile{};                  ///< the performance profile, by number or text
    Json power = Json::object();     ///< "mode", and truth values by option
    Json wakeOnLan = Json::object(); ///< truth values by option
    std::optional<std::string> iscsi{};
    std::optional<std::vector<WantedVlan>> vlans{};
};

/// A team. What is nothing stays as it is.
struct WantedTeam {
    std::string name{};
    bool isAbsent = false;
    Json mode{};                                    ///< a number or its text; null: as it is
    std::optional<std::vector<Selector>> members{}; ///< all of them
    /// Who has a role: nothing, whoever has it; an adapter; or, where the selector is empty, nobody.
    std::optional<Selector> primary{};
    std::optional<Selector> secondary{};
    std::optional<bool> multiVendor{};  ///< when it is made: whether adapters of other makers are allowed
    std::optional<bool> linkSecurity{}; ///< when it is made
    Json settings = Json::object();     ///< values by caption
    std::optional<std::vector<WantedVlan>> vlans{};
};

/// A document.
struct Document {
    std::vector<WantedAdapter> adapters{};
    std::vector<WantedTeam> teams{};
    bool isExclusive = false; ///< whether teams and VLANs that it does not name go
};

inline constexpr std::size_t kMostBytes = std::size_t{16} << 20;
/// The document of a text: UTF-8, at most kMostBytes. Throws DocumentError.
Document ReadDocument(std::string_view text);
/// The same from JSON that was read.
Document DocumentOf(const Json& json);
/// The JSON Schema of documents.
std::string_view DocumentSchema() noexcept;

} // namespace quillet::state
