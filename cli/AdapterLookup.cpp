// Listing adapters, and finding one.
#include "AdapterLookup.h"

#include "Invocation.h"
#include "ObjectPath.h"
#include "Text.h"

#include <algorithm>

namespace quilletctl {

namespace {

/// An object ID is often typed without its braces.
std::string_view WithoutBraces(std::string_view id) {
    return id.size() > 2 && id.front() == '{' && id.back() == '}' ? id.substr(1, id.size() - 2) : id;
}

bool SameId(std::string_view id, std::string_view text) {
    return !id.empty() && SameIgnoringCase(WithoutBraces(id), WithoutBraces(text));
}

std::string ObjectIdIn(CQuillet& session, const std::wstring& path) {
    std::wstring objectId;
    session.GetGUI(path, objectId);
    return ToUtf8(objectId);
}

UsageError SeveralAreCalled(const std::string& text, const std::vector<const ListedAdapter*>& found) {
    std::string ids;
    for (const ListedAdapter* each : found) {
        ids += ids.empty() ? "" : ", ";
        ids += each->objectId.empty() ? each->path : each->objectId;
    }
    return UsageError("several adapters are called \"" + text + "\": " + ids);
}

} // namespace

std::vector<ListedAdapter> ReadAdapters(CQuillet& session) {
    CAdapters adapters;
    Invocation::Check(session.EnumerateAdapters(adapters), "list the adapters");
    std::vector<ListedAdapter> listed;
    for (const CAdapter* adapter : adapters.m_vecItems) {
        if (adapter == nullptr) {
            continue;
        }
        // A path without an object ID is odd, but no reason to hide the other adapters.
        listed.push_back({ToUtf8(adapter->m_wsAdapterID), ObjectIdIn(session, adapter->m_wsAdapterID),
                          ToUtf8(adapter->m_wsName), ToUtf8(adapter->m_wsDisplayName),
                          ToUtf8(adapter->m_wsDeviceID)});
    }
    return listed;
}

ListedAdapter FindAdapter(CQuillet& session, const std::string& text) {
    if (text.empty()) {
        throw UsageError("an adapter is needed: its name, object ID or path");
    }
    const std::vector<ListedAdapter> adapters = ReadAdapters(session);
    // From what can name one adapter only to what several may share.
    using Names = bool (*)(const ListedAdapter&, const std::string&);
    constexpr Names ways[] = {
        [](const ListedAdapter& each, const std::string& given) {
            return SameIgnoringCase(each.path, given);
        },
        [](const ListedAdapter& each, const std::string& given) {
            return SameId(each.objectId, given) || SameId(each.deviceId, given);
        },
        [](const ListedAdapter& each, const std::string& given) {
            return SameIgnoringCase(each.name, given);
        },
        [](const ListedAdapter& each, const std::string& given) {
            return SameIgnoringCase(each.displayName, given);
        },
    };
    for (const Names isNamed : ways) {
        std::vector<const ListedAdapter*> found;
        for (const ListedAdapter& each : adapters) {
            if (isNamed(each, text)) {
                found.push_back(&each);
            }
        }
        if (found.size() == 1) {
            return *found.front();
        }
        if (found.size() > 1) {
            throw SeveralAreCalled(text, found);
        }
    }
    if (IsObjectPath(text)) {
        return {text, ObjectIdIn(session, ToWide(text)), {}, {}, {}};
    }
    throw UsageError("no adapter is called \"" + text + "\"; see quilletctl adapter list");
}

} // namespace quilletctl
