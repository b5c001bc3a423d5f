// Comparing rounds, and writing lines.
#include "commands/monitor/Events.h"

#include "texts/JsonParts.h"
#include "texts/Text.h"
#include "texts/UtcText.h"

#include <algorithm>

namespace quilletctl {

namespace {

const char* TextOf(WatchedKey::Kind kind) {
    switch (kind) {
    case WatchedKey::Kind::Adapter:
        return "adapter";
    case WatchedKey::Kind::Link:
        return "link";
    case WatchedKey::Kind::Team:
        return "team";
    case WatchedKey::Kind::Member:
        return "member";
    case WatchedKey::Kind::Vlan:
        return "vlan";
    }
    return "";
}

const char* TextOf(Event::Kind kind) {
    switch (kind) {
    case Event::Kind::Started:
        return "started";
    case Event::Kind::Changed:
        return "changed";
    case Event::Kind::Appeared:
        return "appeared";
    case Event::Kind::Disappeared:
        return "disappeared";
    case Event::Kind::Gone:
        return "gone";
    case Event::Kind::Back:
        return "back";
    }
    return "";
}

Event Of(Event::Kind kind, const WatchedKey& key, const WatchedThing& thing) {
    return {.kind = kind,
            .thing = TextOf(key.kind),
            .objectId = key.id.substr(key.id.find(' ') + 1),
            .name = thing.name,
            .of = thing.of};
}

/// The name belongs to what is compared only where it changed.
std::string StateOf(const WatchedThing& thing, bool withName) {
    return withName ? thing.name + " (" + thing.state + ')' : thing.state;
}

/// What stands behind the name.
std::string Ending(const Event& event) {
    switch (event.kind) {
    case Event::Kind::Started:
        return " every " + std::to_string(event.interval.value_or(0)) + " s (" +
               std::to_string(event.calls.value_or(0)) + " calls to the provider each time)";
    case Event::Kind::Appeared:
        return ": new, " + event.to.value_or("");
    case Event::Kind::Disappeared:
        return ": gone, was " + event.from.value_or("");
    case Event::Kind::Gone:
        return ": does not answer: " + event.to.value_or("");
    case Event::Kind::Back:
        return ": answers again";
    case Event::Kind::Changed:
        return ": " + event.from.value_or("") + " -> " + event.to.value_or("");
    }
    return {};
}

std::string Beginning(const Event& event) {
    if (event.kind == Event::Kind::Started) {
        return "watching ";
    }
    if (event.thing == "vlan") {
        return "VLAN ";
    }
    return event.thing == "machine" ? "" : event.thing + ' ';
}

} // namespace

std::vector<Event> Compare(const Snapshot& before, const Snapshot& now) {
    std::vector<Event> events;
    for (const auto& [key, thing] : before.things) {
        if (!now.things.contains(key)) {
            // Without its adapter nobody expects a link.
            if (key.kind != WatchedKey::Kind::Link) {
                events.push_back(Of(Event::Kind::Disappeared, key, thing));
                events.back().from = thing.state;
            }
        }
    }
    for (const auto& [key, thing] : now.things) {
        const auto found = before.things.find(key);
        if (found == before.things.end()) {
            events.push_back(Of(Event::Kind::Appeared, key, thing));
            events.back().to = thing.state;
            continue;
        }
        // A link is told by its adapter's name, which is told as the adapter's.
        const bool isRenamed = found->second.name != thing.name && key.kind != WatchedKey::Kind::Link &&
                               key.kind != WatchedKey::Kind::Member;
        if (isRenamed || found->second.state != thing.state) {
            events.push_back(Of(Event::Kind::Changed, key, found->second));
            events.back().from = StateOf(found->second, isRenamed);
            events.back().to = StateOf(thing, isRenamed);
        }
    }
    return events;
}

Json AsJson(const Event& event, Moment when) {
    return Json{{"time", UtcText(when, "T") + 'Z'},
                {"event", TextOf(event.kind)},
                {"kind", event.thing},
                {"objectId", TextOrNull(event.objectId)},
                {"name", event.name},
                {"of", TextOrNull(event.of)},
                {"from", event.from ? Json(*event.from) : Json()},
                {"to", event.to ? Json(*event.to) : Json()},
                {"interval", event.interval ? Json(*event.interval) : Json()},
                {"calls", event.calls ? Json(*event.calls) : Json()}};
}

std::string AsText(const Event& event, Moment when, const Terminal& screen) {
    constexpr std::size_t kLeastName = 16;
    // A person knows the day; whoever reads a file may not.
    const std::string time = UtcText(when, " ");
    const std::string before =
        (screen.outIsTerminal ? time.substr(time.find(' ') + 1) : time) + "Z  " + Beginning(event);
    const std::string after = (event.of.empty() ? "" : " of " + event.of) + Ending(event);
    std::string name = event.name;
    if (screen.outIsTerminal) {
        const std::size_t others = DisplayWidth(before) + DisplayWidth(Printable(after));
        name = Shortened(Printable(name),
                         std::max(kLeastName, screen.width > others ? screen.width - others : 0));
    }
    return Printable(before + name + after);
}

} // namespace quilletctl
