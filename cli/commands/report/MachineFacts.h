// What a report tells of a machine, as far as its provider does.
#pragma once

#include <quillet/client/Session.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quilletctl {

/// Something that was asked for: what came of it, and why not all did.
template <class Value>
struct Told {
    Value value{};
    std::string failure{}; ///< empty: it was told
};

/// The last result of a test.
struct TestFact {
    quillet::Diagnostic test;
    quillet::TestResult result;
};

struct AdapterFacts {
    quillet::AdapterOverview overview{};
    std::string failure{}; ///< what the overview lacks, and why; empty: nothing
    Told<quillet::Flags<quillet::ProviderBit>> warnings{};
    Told<std::vector<quillet::Setting>> settings{};
    Told<std::vector<quillet::Vlan>> vlans{}; ///< of its own, not of its team
    Told<std::optional<quillet::BootAgent>> bootAgent{};
    Told<std::vector<quillet::Setting>> bootSettings{};
    Told<std::vector<TestFact>> tests{}; ///< those that ever ran
};

struct TeamFacts {
    quillet::Team team{};
    Told<quillet::StatusInfo> status{};
    Told<std::vector<quillet::TeamMember>> members{};
    Told<std::vector<quillet::Vlan>> vlans{};
    Told<std::vector<quillet::Setting>> settings{};
};

struct MachineFacts {
    std::string machine{}; ///< what it is called (UTF-8)
    Told<std::vector<AdapterFacts>> adapters{};
    Told<std::vector<TeamFacts>> teams{};
    Told<std::vector<quillet::IscsiAdapter>> iscsi{};
    Told<std::optional<quillet::Flags<quillet::ProviderBit>>> warnings{};
    std::vector<std::string> untold{}; ///< everything that was not told, a sentence each (UTF-8)
};

/// What a report is to hold.
enum class Detail {
    Drawing, ///< adapters, teams and VLANs
    All
};

using FactsProgress = std::function<void(const std::string& what, std::size_t done, std::size_t all)>;

/// Asks for everything; what fails is told in its place.
/// @param machine  what the machine is called
/// @param progress told what is read next, and how many of how many adapters are read
MachineFacts ReadMachineFacts(quillet::Session& session, const std::string& machine, Detail detail,
                              const FactsProgress& progress);

/// What an adapter is called (UTF-8).
std::string NameOf(const quillet::AdapterOverview& overview);

} // namespace quilletctl
