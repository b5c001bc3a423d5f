// quilletctl adapter: the machine's network adapters.
#include "Commands.h"
#include "Table.h"
#include "Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace quilletctl {

namespace {

struct ListedAdapter {
    std::string path;
    std::string objectId; ///< empty when the path holds none
    std::string name;
    std::string displayName;
    std::string deviceId;
};

std::vector<ListedAdapter> ReadAdapters(CQuillet& session) {
    CAdapters adapters;
    Invocation::Check(session.EnumerateAdapters(adapters), "list the adapters");
    std::vector<ListedAdapter> listed;
    for (const CAdapter* adapter : adapters.m_vecItems) {
        if (adapter == nullptr) {
            continue;
        }
        // A path without an object ID is odd, but no reason to hide the other adapters.
        std::wstring objectId;
        session.GetGUI(adapter->m_wsAdapterID, objectId);
        listed.push_back({ToUtf8(adapter->m_wsAdapterID), ToUtf8(objectId), ToUtf8(adapter->m_wsName),
                          ToUtf8(adapter->m_wsDisplayName), ToUtf8(adapter->m_wsDeviceID)});
    }
    return listed;
}

Json AsJson(const std::vector<ListedAdapter>& adapters) {
    Json list = Json::array();
    for (const ListedAdapter& adapter : adapters) {
        list.push_back(Json{{"path", adapter.path},
                            {"objectId", adapter.objectId.empty() ? Json() : Json(adapter.objectId)},
                            {"name", adapter.name},
                            {"displayName", adapter.displayName},
                            {"deviceId", adapter.deviceId}});
    }
    return Json{{"adapters", std::move(list)}};
}

void PrintTable(const std::vector<ListedAdapter>& adapters, const Terminal& screen) {
    // On most machines the two identifiers are one; a second column of the same would only fill the screen.
    const bool twoIds = std::any_of(adapters.begin(), adapters.end(),
                                    [](const ListedAdapter& each) { return each.deviceId != each.objectId; });
    std::vector<Column> columns{
        {"NAME", Fit::MayShorten}, {"DISPLAY NAME", Fit::MayShorten}, {"OBJECT ID", Fit::Whole}};
    if (twoIds) {
        columns.push_back({"DEVICE ID", Fit::Whole});
    }
    Table table(std::move(columns));
    for (const ListedAdapter& adapter : adapters) {
        table.AddRow({adapter.name, adapter.displayName, adapter.objectId, adapter.deviceId});
    }
    table.Print(screen);
}

ExitStatus ListAdapters(Invocation& run) {
    const std::vector<ListedAdapter> adapters = ReadAdapters(run.Session());
    if (run.WantsJson()) {
        run.Print(AsJson(adapters));
    } else if (adapters.empty()) {
        run.Out() << "no adapters\n";
    } else {
        PrintTable(adapters, run.Screen());
    }
    return ExitStatus::Done;
}

} // namespace

void AddAdapterCommands(CommandTree& tree) {
    tree.AddNoun("adapter", "The machine's network adapters").Verb("list", "List the adapters", ListAdapters);
}

} // namespace quilletctl
