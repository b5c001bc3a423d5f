// Reading documents. Everything that is wrong with one is found at once.
#include <quillet-state/Document.h>

#include "Options.h"
#include "Texts.h"
#include "Words.h"

#include <algorithm>
#include <initializer_list>
#include <set>

namespace quillet::state {

namespace {

constexpr int kDeepest = 32;
constexpr std::int32_t kLastVlanId = 4094;

/// Whether it is a whole number from 0 to `last`.
bool IsWithin(const Json& json, std::int32_t last) {
    return json.is_number_integer() && json >= Json(0) && json <= Json(last);
}

std::string Joined(const std::vector<std::string>& problems) {
    std::string text;
    for (const std::string& problem : problems) {
        text += (text.empty() ? "" : "\n") + problem;
    }
    return text;
}

/// Goes through a document with the place where it is, and remembers what is wrong.
class Reader {
  public:
    Document Read(const Json& json) {
        Document document;
        if (IsObject(json, {"$schema", "adapters", "teams", "exclusive"})) {
            Each(json, "adapters", [&](const Json& each) { document.adapters.push_back(Adapter(each)); });
            Each(json, "teams", [&](const Json& each) { document.teams.push_back(Team(each)); });
            document.isExclusive = Flag(json, "exclusive").value_or(false);
        }
        if (!m_problems.empty()) {
            throw DocumentError(std::move(m_problems));
        }
        return document;
    }

  private:
    /// A step down to what a place belongs to.
    class Step {
      public:
        Step(Reader& reader, const std::string& name) : m_reader(reader), m_length(reader.m_place.size()) {
            reader.m_place += (m_length == 0 || name.front() == '[' ? "" : ".") + name;
        }
        ~Step() { m_reader.m_place.resize(m_length); }
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;

      private:
        Reader& m_reader;
        std::size_t m_length;
    };

    void Complain(const std::string& what) {
        m_problems.push_back((m_place.empty() ? "the document" : m_place) + ": " + what);
    }

    bool IsObject(const Json& json, std::initializer_list<const char*> keys) {
        if (!json.is_object()) {
            Complain("an object is needed");
            return false;
        }
        for (const auto& [key, value] : json.items()) {
            const auto isKey = [&key = key](const char* each) { return key == each; };
            if (std::none_of(keys.begin(), keys.end(), isKey)) {
                Complain("there is no key \"" + key + "\"");
            }
        }
        return true;
    }

    template <class Read>
    void Each(const Json& json, const char* key, Read read) {
        const auto found = json.find(key);
        if (found == json.end()) {
            return;
        }
        const Step step(*this, key);
        if (!found->is_array()) {
            Complain("a list is needed");
            return;
        }
        for (std::size_t i = 0; i < found->size(); ++i) {
            const Step element(*this, "[" + std::to_string(i) + "]");
            read((*found)[i]);
        }
    }

    std::optional<std::string> Text(const Json& json, const char* key) {
        const auto found = json.find(key);
        if (found == json.end()) {
            return std::nullopt;
        }
        const Step step(*this, key);
        if (!found->is_string() || found->get_ref<const std::string&>().empty()) {
            Complain("a text is needed");
            return std::nullopt;
        }
        return found->get<std::string>();
    }

    std::optional<bool> Flag(const Json& json, const char* key) {
        const auto found = json.find(key);
        if (found == json.end()) {
            return std::nullopt;
        }
        const Step step(*this, key);
        if (!found->is_boolean()) {
            Complain("true or false is needed");
            return std::nullopt;
        }
        return found->get<bool>();
    }

    /// Whether "state" says that something is not to be there.
    bool Absence(const Json& json) {
        const std::optional<std::string> state = Text(json, "state");
        if (state && *state != "absent" && *state != "present") {
            const Step step(*this, "state");
            Complain("\"present\" or \"absent\" is needed");
        }
        return state == "absent";
    }

    /// Values of settings: numbers, texts, lists of these.
    Json Settings(const Json& json) {
        const auto found = json.find("settings");
        if (found == json.end()) {
            return Json::object();
        }
        const Step step(*this, "settings");
        if (!found->is_object()) {
            Complain("values by caption are needed");
            return Json::object();
        }
        const auto isPlain = [](const Json& each) { return each.is_number_integer() || each.is_string(); };
        for (const auto& [caption, value] : found->items()) {
            const bool isList = value.is_array() && std::all_of(value.begin(), value.end(), isPlain);
            if (!isPlain(value) && !isList) {
                const Step named(*this, caption.empty() ? "\"\"" : caption);
                Complain("a whole number, a text, or a list of these is needed");
            }
        }
        return *found;
    }

    template <class Record, std::size_t Size>
    Json Options(const Json& json, const char* key, const std::array<Option<Record>, Size>& options,
                 const char* number) {
        const auto found = json.find(key);
        if (found == json.end()) {
            return Json::object();
        }
        const Step step(*this, key);
        if (!found->is_object()) {
            Complain("an object is needed");
            return Json::object();
        }
        for (const auto& [name, value] : found->items()) {
            const Step named(*this, name.empty() ? "\"\"" : name);
            const auto isOption = [&name = name](const auto& option) { return name == option.key; };
            if (number != nullptr && name == number) {
                if (!IsWithin(value, kLastPowerMode)) {
                    Complain("a number from 0 to 2 is needed");
                }
            } else if (std::none_of(options.begin(), options.end(), isOption)) {
                Complain("there is no such option");
            } else if (!value.is_boolean()) {
                Complain("true or false is needed");
            }
        }
        return *found;
    }

    /// A number or a text.
    Json NumberOrText(const Json& json, const char* key) {
        const auto found = json.find(key);
        if (found == json.end()) {
            return {};
        }
        if (!found->is_number_integer() && !found->is_string()) {
            const Step step(*this, key);
            Complain("a number or a text is needed");
            return {};
        }
        return *found;
    }

    /// The keys of a selector, among others.
    Selector SelectorIn(const Json& json, bool mayMatch) {
        Selector selector;
        selector.name = Text(json, "name").value_or("");
        selector.mac = Text(json, "mac").value_or("");
        selector.slot = NumberAsText(json, "slot");
        selector.port = NumberAsText(json, "port");
        selector.match = mayMatch ? Text(json, "match").value_or("") : "";
        selector.written = Json::object();
        for (const char* key : {"name", "mac", "slot", "port", "match"}) {
            if (const auto found = json.find(key); found != json.end()) {
                selector.written[key] = *found;
            }
        }
        const auto given = static_cast<int>(!selector.name.empty()) +
                           static_cast<int>(!selector.mac.empty()) +
                           static_cast<int>(!selector.slot.empty()) + static_cast<int>(selector.IsPattern());
        if (given != 1 || (!selector.port.empty() && selector.slot.empty())) {
            Complain(std::string("an adapter is named by one of name, mac, ") + (mayMatch ? "match, " : "") +
                     "and slot, to which a port may belong");
        } else if (!selector.mac.empty() && MacDigits(selector.mac).empty()) {
            Complain("\"" + selector.mac + "\" is no MAC address");
        }
        return selector;
    }

    std::string NumberAsText(const Json& json, const char* key) {
        const Json value = NumberOrText(json, key);
        return value.is_string() ? value.get<std::string>() : value.is_null() ? std::string() : value.dump();
    }

    /// A selector by itself: an object, or a name.
    Selector OneSelector(const Json& json) {
        if (json.is_string() && !json.get_ref<const std::string&>().empty()) {
            Selector selector;
            selector.name = json.get<std::string>();
            selector.written = json;
            return selector;
        }
        return IsObject(json, {"name", "mac", "slot", "port"}) ? SelectorIn(json, false) : Selector();
    }

    /// Null stands for nobody.
    std::optional<Selector> SelectorAt(const Json& json, const char* key) {
        const auto found = json.find(key);
        if (found == json.end()) {
            return std::nullopt;
        }
        if (found->is_null()) {
            return Selector();
        }
        const Step step(*this, key);
        return OneSelector(*found);
    }

    std::optional<std::vector<WantedVlan>> Vlans(const Json& json) {
        if (!json.contains("vlans")) {
            return std::nullopt;
        }
        std::vector<WantedVlan> vlans;
        std::set<std::int32_t> known;
        Each(json, "vlans", [&](const Json& each) {
            WantedVlan vlan = Vlan(each);
            if (!known.insert(vlan.id).second) {
                Complain("VLAN " + std::to_string(vlan.id) + " is described twice");
            }
            vlans.push_back(std::move(vlan));
        });
        return vlans;
    }

    WantedVlan Vlan(const Json& json) {
        WantedVlan vlan;
        if (!IsObject(json, {"id", "name", "state", "settings"})) {
            return vlan;
        }
        const auto id = json.find("id");
        if (id == json.end() || !IsWithin(*id, kLastVlanId)) {
            Complain("\"id\" is needed: a number from 1 to 4094, or 0 for the untagged VLAN");
        } else {
            vlan.id = id->get<std::int32_t>();
        }
        vlan.name = Text(json, "name");
        vlan.isAbsent = Absence(json);
        vlan.settings = Settings(json);
        return vlan;
    }

    WantedAdapter Adapter(const Json& json) {
        WantedAdapter adapter;
        if (!IsObject(json, {"name", "mac", "slot", "port", "match", "settings", "profile", "power",
                             "wakeOnLan", "iscsi", "vlans"})) {
            return adapter;
        }
        adapter.selector = SelectorIn(json, true);
        adapter.settings = Settings(json);
        adapter.profile = NumberOrText(json, "profile");
        adapter.power = Options(json, "power", kPowerOptions, "mode");
        adapter.wakeOnLan = Options(json, "wakeOnLan", kWakeOptions, nullptr);
        adapter.iscsi = Text(json, "iscsi");
        if (adapter.iscsi && !IscsiFrom(*adapter.iscsi)) {
            Complain("\"iscsi\" is \"primary\", \"secondary\" or \"off\"");
        }
        adapter.vlans = Vlans(json);
        return adapter;
    }

    WantedTeam Team(const Json& json) {
        WantedTeam team;
        if (!IsObject(json, {"name", "state", "mode", "members", "primary", "secondary", "multiVendor",
                             "linkSecurity", "settings", "vlans"})) {
            return team;
        }
        team.name = Text(json, "name").value_or("");
        if (team.name.empty()) {
            Complain("a team needs its name");
        }
        team.isAbsent = Absence(json);
        team.mode = NumberOrText(json, "mode");
        if (!team.mode.is_null() && !ModeFrom(team.mode)) {
            Complain("no team mode is called " + team.mode.dump());
        }
        if (json.contains("members")) {
            team.members.emplace();
            Each(json, "members", [&](const Json& each) { team.members->push_back(OneSelector(each)); });
        }
        team.primary = SelectorAt(json, "primary");
        team.secondary = SelectorAt(json, "secondary");
        team.multiVendor = Flag(json, "multiVendor");
        team.linkSecurity = Flag(json, "linkSecurity");
        team.settings = Settings(json);
        team.vlans = Vlans(json);
        return team;
    }

    std::string m_place;
    std::vector<std::string> m_problems;
};

} // namespace

DocumentError::DocumentError(std::vector<std::string> problems)
    : std::runtime_error(Joined(problems)), m_problems(std::move(problems)) {}

std::string Selector::Text() const {
    if (!slot.empty()) {
        return "slot " + slot + (port.empty() ? "" : ", port " + port);
    }
    return '"' + (!name.empty() ? name : !mac.empty() ? mac : match) + '"';
}

Document DocumentOf(const Json& json) {
    return Reader().Read(json);
}

Document ReadDocument(std::string_view text) {
    if (text.size() > kMostBytes) {
        throw DocumentError({"the document is larger than 16 MiB"});
    }
    std::vector<std::set<std::string>> keys;
    std::vector<std::string> problems;
    // What is said twice would be taken once, and nobody could tell which.
    const auto check = [&](int depth, Json::parse_event_t event, Json& parsed) {
        if (depth > kDeepest) {
            throw DocumentError({"the document is nested too deeply"});
        }
        if (event == Json::parse_event_t::object_start) {
            keys.emplace_back();
        } else if (event == Json::parse_event_t::object_end) {
            keys.pop_back();
        } else if (event == Json::parse_event_t::key && !keys.empty() &&
                   !keys.back().insert(parsed.get<std::string>()).second) {
            problems.push_back("the key \"" + parsed.get<std::string>() + "\" stands twice in an object");
        }
        return true;
    };
    try {
        const Json json = Json::parse(text, check);
        if (!problems.empty()) {
            throw DocumentError(std::move(problems));
        }
        return DocumentOf(json);
    } catch (const Json::parse_error& error) {
        throw DocumentError({"it is no JSON, at byte " + std::to_string(error.byte)});
    }
}

} // namespace quillet::state
