// What a list shows of adapters, with as few questions as it takes.
#include "Operations.h"

#include <quillet/FetchOnce.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <system_error>

namespace quillet {

namespace {

/// Runs what may fail; the first failure of an adapter stays with it.
template <class Read>
void Attempt(AdapterOverview& overview, Read read) {
    try {
        read();
    } catch (const Error& failure) {
        overview.failure = overview.failure ? overview.failure : failure.code();
    }
}

/// Runs the work on so many threads, the calling one included, and comes back when all of them are done.
template <class Work>
void SideBySide(std::size_t threads, Work work) {
    std::vector<std::future<void>> helpers;
    try {
        for (std::size_t i = 1; i < threads; ++i) {
            helpers.push_back(std::async(std::launch::async, work));
        }
    } catch (const std::system_error&) {
        // The host has no more threads; those that are there do it all.
    }
    work();
    for (std::future<void>& helper : helpers) {
        helper.get();
    }
}

} // namespace

struct FetchOnce::State {
    CFetchOnce once;
};

FetchOnce::FetchOnce(Session& session) : m_state(new State{CFetchOnce(session.m_state->quillet)}) {}

FetchOnce::~FetchOnce() = default;

std::vector<AdapterOverview> Session::AdapterOverviews(unsigned threads) {
    return AdapterOverviews(Adapters(), threads);
}

std::vector<AdapterOverview> Session::AdapterOverviews(std::vector<Adapter> adapters, unsigned threads) {
    std::vector<AdapterOverview> overviews;
    overviews.reserve(adapters.size());
    for (Adapter& adapter : adapters) {
        AdapterOverview& overview = overviews.emplace_back();
        overview.objectId = ObjectIdOf(adapter.id);
        overview.adapter = std::move(adapter);
    }
    const FetchOnce once(*this);
    NoteTeams(overviews);
    std::vector<AdapterOverview*> rest;
    for (AdapterOverview& each : overviews) {
        // What the teams know of their members this thread has fetched with them.
        if (each.team.IsEmpty()) {
            rest.push_back(&each);
        } else {
            Complete(each);
        }
    }
    std::atomic<std::size_t> next = 0;
    SideBySide(std::min<std::size_t>(threads, rest.size()), [&] {
        for (std::size_t i = next++; i < rest.size(); i = next++) {
            Complete(*rest[i]);
        }
    });
    return overviews;
}

void Session::Complete(AdapterOverview& overview) {
    const FetchOnce once(*this);
    const AdapterId& id = overview.adapter.id;
    Attempt(overview, [&] { overview.adapter.slot = ReadAdapter(id).slot; });
    Attempt(overview, [&] { overview.state = ReadState(id); });
    Attempt(overview, [&] { overview.hardware = ReadHardware(id); });
}

void Session::NoteTeams(std::vector<AdapterOverview>& overviews) {
    const auto note = [&](const Team& team) {
        for (const TeamMember& member : Members(team.id)) {
            // A membership may name its adapter by a path of another form; the object identifier is one.
            const std::wstring objectId = ObjectIdOf(member.id);
            const auto found =
                std::find_if(overviews.begin(), overviews.end(),
                             [&](const AdapterOverview& each) { return each.objectId == objectId; });
            if (found != overviews.end()) {
                found->team = team.id;
                found->teamName = team.name;
                found->role = member.role;
            }
        }
    };
    const auto attempt = [&overviews](auto read) {
        try {
            read();
        } catch (const Error& failure) {
            // Any adapter may be a member of a team that does not tell.
            for (AdapterOverview& each : overviews) {
                each.failure = each.failure ? each.failure : failure.code();
            }
        }
    };
    attempt([&] {
        for (const Team& team : Teams()) {
            attempt([&] { note(team); });
        }
    });
}

} // namespace quillet
