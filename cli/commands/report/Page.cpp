// Writing the page.
#include "commands/report/Page.h"

#include "commands/report/Differences.h"
#include "commands/report/Drawing.h"
#include "commands/report/HtmlTable.h"
#include "commands/report/Markup.h"
#include "names/ObjectPath.h"
#include "texts/Text.h"

#include <algorithm>

namespace quilletctl {

namespace {

constexpr const char* kPageStyle = R"(* { box-sizing: border-box; }
body { margin: 0 auto; max-width: 62rem; padding: 1rem; background: var(--q-paper); color: var(--q-text);
  font: 1rem/1.5 system-ui, "Segoe UI", "DejaVu Sans", sans-serif; overflow-wrap: anywhere; }
h1 { font-size: 1.6rem; line-height: 1.25; margin: .5rem 0; }
h2 { font-size: 1.2rem; margin: 2rem 0 .5rem; }
p, ul { margin: .5rem 0; }
.made { color: var(--q-muted); }
.drawing { overflow-x: auto; border: 1px solid var(--q-line); border-radius: 6px; }
.drawing svg { display: block; width: 100%; height: auto; margin: 0 auto; }
.drawing:focus-visible { outline: 3px solid var(--q-accent); outline-offset: 2px; }
table { width: 100%; table-layout: fixed; border-collapse: collapse; font-size: .9rem; }
th, td { text-align: left; vertical-align: top; padding: .35rem .5rem; border-bottom: 1px solid var(--q-line); }
thead th { color: var(--q-muted); font-weight: 600; }
tbody th { font-weight: 600; }
ul { padding-left: 1.4rem; }
.untold, .notice { border-left: .3rem solid var(--q-bad); padding-left: .7rem; }
.notice { padding-left: 1.7rem; }

@media (max-width: 48rem) {
  thead { position: absolute; clip-path: inset(50%); width: 1px; height: 1px; overflow: hidden; }
  table, tbody, tr, th, td { display: block; }
  tr { border-bottom: 1px solid var(--q-line); padding: .4rem 0; }
  th, td { border: 0; padding: .1rem 0; }
  td::before { content: attr(data-title) ": "; color: var(--q-muted); }
}
@media print {
  body { max-width: none; padding: 0; font-size: 10pt; }
  .drawing { border: 0; overflow: visible; }
  h2, thead { break-after: avoid; }
  tr { break-inside: avoid; }
}
)";

std::string Heading(const std::string& text) {
    return "<h2>" + Escaped(text) + "</h2>\n";
}

std::string Notice(const std::string& text) {
    return "<li>" + Escaped(text) + "</li>\n";
}

void AddBits(std::string& notices, const std::string& what, quillet::Flags<quillet::ProviderBit> bits) {
    std::string numbers;
    unsigned number = 0;
    for (std::uint64_t rest = bits.Mask(); rest != 0; rest >>= 1, ++number) {
        if ((rest & 1) != 0) {
            numbers += (numbers.empty() ? "" : ", ") + std::to_string(number);
        }
    }
    if (!numbers.empty()) {
        notices += Notice(what + " (the meaning is the provider's own): " + numbers);
    }
}

/// The drawing as wide as the page, but neither larger than it is nor so small that nobody can read it:
/// rather it scrolls in its frame.
std::string DrawingStyle(const MachineFacts& facts) {
    const int width = DrawingWidth(facts);
    return "@media screen { .drawing svg { max-width: " + std::to_string(width) +
           "px; min-width: " + std::to_string(width * 4 / 5) + "px; } }\n";
}

/// What the tables call a member: its display name may be that of others, too.
std::string MemberName(const quillet::TeamMember& member, const MachineFacts& facts) {
    const auto found = std::ranges::find_if(facts.adapters.value, [&](const AdapterFacts& each) {
        return SameIgnoringCase(ToUtf8(each.overview.objectId), ObjectIdIn(member.id));
    });
    return found == facts.adapters.value.end() ? ToUtf8(member.displayName) : NameOf(found->overview);
}

/// What stands in place of a table without rows.
std::string NoRows(const std::string& failure) {
    return failure.empty() ? "There are none." : "";
}
/// The same of a table about adapters and teams, which may not be known.
std::string NoRows(const MachineFacts& facts) {
    return facts.adapters.failure.empty() && facts.teams.failure.empty() ? "There are none."
                                                                         : "None is told.";
}

/// What somebody should look at, first of all.
std::string Notices(const MachineFacts& facts) {
    std::string notices;
    if (facts.warnings.value) {
        AddBits(notices, "Pending warnings of the machine", *facts.warnings.value);
    }
    for (const AdapterFacts& adapter : facts.adapters.value) {
        const std::string name = NameOf(adapter.overview);
        AddBits(notices, "Warnings of " + name, adapter.warnings.value);
        const auto& state = adapter.overview.state;
        if (state && state->conditions.Has(quillet::AdapterCondition::DriverProblem)) {
            notices += Notice(name + ": driver problem");
        }
        if (state && (state->conditions.Has(quillet::AdapterCondition::HardwareMissing) ||
                      state->hardware == quillet::HardwareStatus::Missing)) {
            notices += Notice(name + ": the hardware is missing");
        }
        if (adapter.bootAgent.value && adapter.bootAgent.value->updateAvailable) {
            notices += Notice(name + ": there is an update of its boot agent");
        }
    }
    for (const TeamFacts& team : facts.teams.value) {
        for (const quillet::TeamMember& member : team.members.value) {
            if (member.status != quillet::MemberStatus::Active) {
                notices += Notice("Team " + ToUtf8(team.team.name) + ": " + MemberName(member, facts) +
                                  " is " + ToUtf8(quillet::Text(member.status)));
            }
        }
    }
    return Heading("Warnings") + NotTold("the pending warnings of the machine", facts.warnings.failure) +
           (notices.empty() ? (facts.warnings.failure.empty() ? Paragraph("None is pending.") : "")
                            : "<ul class=\"notice\">\n" + notices + "</ul>\n") +
           Paragraph("Whether a restart is needed a provider tells only when something is changed; the "
                     "command that "
                     "changes it says so.");
}

std::string AdapterTable(const MachineFacts& facts) {
    HtmlTable table({{"Adapter", 26},
                     {"Slot and port", 15},
                     {"State", 12},
                     {"Link", 14},
                     {"MAC address", 22},
                     {"Team", 11}});
    for (const auto& [overview, failure, warnings, settings, vlans, agent, bootSettings, tests] :
         facts.adapters.value) {
        const auto& state = overview.state;
        const auto& hardware = overview.hardware;
        table.AddRow(
            {NameOf(overview),
             ToUtf8(overview.adapter.slot) + (hardware ? ", port " + ToUtf8(hardware->portNumber) : ""),
             state ? ToUtf8(quillet::Text(state->hardware)) : "not told",
             state ? ToUtf8(quillet::Text(state->speed)) + ", " + ToUtf8(quillet::Text(state->duplex))
                   : "not told",
             hardware ? ToUtf8(hardware->macAddress) : "not told", ToUtf8(overview.teamName)});
    }
    return Heading("Adapters") + NotTold("all adapters", facts.adapters.failure) +
           table.Markup(NoRows(facts.adapters.failure));
}

std::string Teams(const MachineFacts& facts) {
    HtmlTable table({{"Team", 20}, {"Mode", 22}, {"Status", 13}, {"Members", 45}});
    for (const TeamFacts& team : facts.teams.value) {
        std::string members;
        for (const quillet::TeamMember& member : team.members.value) {
            members += (members.empty() ? "" : "; ") + MemberName(member, facts) + " (" +
                       ToUtf8(quillet::Text(member.role)) + ", " + ToUtf8(quillet::Text(member.status)) + ")";
        }
        table.AddRow({ToUtf8(team.team.name), ToUtf8(quillet::Text(team.team.mode)),
                      team.status.failure.empty() ? ToUtf8(quillet::Text(team.status.value)) : "not told",
                      members + (team.members.failure.empty() ? ""
                                 : members.empty()            ? "not told"
                                                              : "; others are not told")});
    }
    return Heading("Teams") + NotTold("all teams", facts.teams.failure) +
           table.Markup(NoRows(facts.teams.failure));
}

std::string Vlans(const MachineFacts& facts) {
    HtmlTable table({{"On", 40}, {"VLAN", 15}, {"Name", 25}, {"Status", 20}});
    std::string untold;
    const auto add = [&](const std::string& parent, const Told<std::vector<quillet::Vlan>>& vlans) {
        for (const quillet::Vlan& vlan : vlans.value) {
            table.AddRow({parent, vlan.number == 0 ? "untagged" : std::to_string(vlan.number),
                          ToUtf8(vlan.name), ToUtf8(quillet::Text(vlan.status))});
        }
        untold += NotTold("all VLANs of " + parent, vlans.failure);
    };
    for (const TeamFacts& team : facts.teams.value) {
        add(ToUtf8(team.team.name), team.vlans);
    }
    for (const AdapterFacts& adapter : facts.adapters.value) {
        add(NameOf(adapter.overview), adapter.vlans);
    }
    return Heading("VLANs") + untold + table.Markup(NoRows(facts));
}

std::string Settings(const MachineFacts& facts) {
    HtmlTable table({{"Of", 30}, {"Setting", 22}, {"Value", 26}, {"Default", 22}});
    for (const Difference& each : DifferencesFromDefaults(facts)) {
        table.AddRow({each.owner, each.setting, each.value, each.standard});
    }
    std::string untold;
    for (const AdapterFacts& adapter : facts.adapters.value) {
        untold += NotTold("all settings of " + NameOf(adapter.overview), adapter.settings.failure);
    }
    return Heading("Settings that differ from their defaults") + untold + table.Markup(NoRows(facts));
}

std::string IscsiText(const MachineFacts& facts, const std::wstring& objectId) {
    const auto found = std::ranges::find_if(facts.iscsi.value, [&](const quillet::IscsiAdapter& each) {
        return SameIgnoringCase(ToUtf8(each.objectId), ToUtf8(objectId));
    });
    if (found == facts.iscsi.value.end()) {
        return facts.iscsi.failure.empty() ? "" : "not told";
    }
    switch (found->status) {
    case quillet::IscsiStatus::NotBootPort:
        return "off";
    case quillet::IscsiStatus::PrimaryPort:
        return "primary";
    case quillet::IscsiStatus::SecondaryPort:
        return "secondary";
    }
    return "code " + std::to_string(static_cast<std::int32_t>(found->status));
}

std::string BootAgents(const MachineFacts& facts) {
    HtmlTable table(
        {{"Boot agent of", 32}, {"Version", 16}, {"Image in flash", 20}, {"Update", 14}, {"iSCSI boot", 18}});
    for (const AdapterFacts& adapter : facts.adapters.value) {
        const auto& agent = adapter.bootAgent.value;
        if (agent) {
            table.AddRow({NameOf(adapter.overview), ToUtf8(agent->version), ToUtf8(agent->imageTypeText),
                          agent->updateAvailable ? "available" : "none",
                          IscsiText(facts, adapter.overview.objectId)});
        } else if (!adapter.bootAgent.failure.empty()) {
            table.AddRow({NameOf(adapter.overview), "not told"});
        }
    }
    return Heading("Boot agents and iSCSI") + NotTold("the places in iSCSI boot", facts.iscsi.failure) +
           table.Markup(NoRows(facts));
}

std::string Diagnostics(const MachineFacts& facts) {
    HtmlTable table({{"Adapter", 28}, {"Test", 30}, {"State", 15}, {"Result", 27}});
    for (const AdapterFacts& adapter : facts.adapters.value) {
        for (const auto& [test, result] : adapter.tests.value) {
            table.AddRow({NameOf(adapter.overview), ToUtf8(test.name), ToUtf8(result.stateText),
                          ToUtf8(result.result)});
        }
        if (!adapter.tests.failure.empty()) {
            table.AddRow({NameOf(adapter.overview), "not told"});
        }
    }
    return Heading("Last results of diagnostic tests") +
           table.Markup(facts.adapters.failure.empty() ? "No test has been run." : "None is told.");
}

std::string Untold(const MachineFacts& facts) {
    if (facts.untold.empty()) {
        return {};
    }
    std::string list;
    for (const std::string& each : facts.untold) {
        list += Notice(each);
    }
    return Heading("What the provider does not tell") + "<ul>\n" + list + "</ul>\n";
}

} // namespace

std::string PageOf(const MachineFacts& facts, const std::string& made) {
    const std::string title = Escaped("Network adapters of " + facts.machine);
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" + title +
           "</title>\n<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
           "'unsafe-inline'\">\n"
           "<style>\n" +
           SharedStyle() + kPageStyle + DrawingStyle(facts) + "</style>\n</head>\n<body>\n<main>\n<h1>" +
           title + "</h1>\n<p class=\"made\">" + Escaped(made) + "</p>\n" + Notices(facts) +
           Heading("Connections") +
           "<div class=\"drawing\" tabindex=\"0\" role=\"region\" aria-label=\"Drawing of the "
           "connections\">\n" +
           DrawMachine(facts) + "</div>\n" + AdapterTable(facts) + Teams(facts) + Vlans(facts) +
           Settings(facts) + BootAgents(facts) + Diagnostics(facts) + Untold(facts) +
           "</main>\n</body>\n</html>\n";
}

} // namespace quilletctl
