// Pages without windows that ask the machine while something is entered, and somebody else beside them.
#pragma once

#include "Refusal.h"
#include "model/ModelDesk.h"

#include <quillet/client/Text.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace quillet::tests {

/// Does for a page what its window would do.
class AskingDesk : public ModelDesk {
  public:
    /// Reads a page as its window does when it is opened, and lets it ask what a window would.
    template <class Model>
    std::shared_ptr<Model> Open(std::shared_ptr<Model> page) {
        page->changed = [this, raw = page.get()] {
            if (pages::Job checking = raw->Checking()) {
                Worker().Ask(raw->shared_from_this(), std::move(checking), [](const std::wstring&) {});
            }
        };
        Read(page);
        return page;
    }
    /// Does a job of a page's; a failure is its notice.
    void Do(const std::shared_ptr<pages::Page>& page, pages::Job job) {
        const std::wstring failure = ModelDesk::Do(std::move(job));
        if (!failure.empty()) {
            page->SetNotice(failure);
        }
    }
    /// Applies a page alone.
    pages::Applied Apply(const std::shared_ptr<pages::Page>& page) {
        return ModelDesk::Apply(pages::PageList{page});
    }
    /// Does something with the machine beside the pages, as somebody else would.
    template <class Work>
    auto With(Work work) {
        std::optional<decltype(work(std::declval<Session&>()))> result;
        std::wstring failure;
        Worker().Ask(
            Owner(),
            [&](Session& session, const pages::Asking&) -> pages::Answer {
                result = work(session);
                return nullptr;
            },
            [&](const std::wstring& reason) { failure = reason; });
        Settle();
        if (!result) {
            throw std::runtime_error(ToUtf8(failure));
        }
        return *result;
    }
    /// Makes an adapter one that cannot do something.
    void TakeCapability(const std::wstring& name, Capability capability) const {
        for (const simulator::InstancePtr& each :
             Machine().Store().Instances(L"Zorel_PhysicalEthernetAdapter")) {
            if (each->Text(L"Name") == name) {
                simulator::Instance changed = *each;
                simulator::Value::Array codes = *changed.Find(L"Capabilities")->AsArray();
                std::erase_if(codes, [capability](const auto& code) {
                    return code && std::get<std::uint64_t>(*code) == static_cast<std::uint64_t>(capability);
                });
                changed.Set(L"Capabilities", simulator::Value(std::move(codes)));
                Machine().Store().PutInstance(changed);
            }
        }
    }
    /// The changes that the provider was asked for since the last time, each by its operation and method.
    std::vector<std::wstring> Changes() const {
        std::vector<std::wstring> changes;
        for (const simulator::JournalEntry& entry : Machine().Calls().Take()) {
            const std::wstring line = entry.Line();
            const bool isMethod = line.find(L"ExecMethod") == 0;
            const bool isCheck = entry.method.find(L"Validate") == 0 || entry.method.find(L"Get") == 0;
            if ((isMethod && !isCheck) || line.find(L"PutInstance") == 0 ||
                line.find(L"DeleteInstance") == 0) {
                changes.push_back(isMethod ? entry.method : line.substr(0, line.find(L' ')));
            }
        }
        return changes;
    }
};

/// The adapter of a name ("Zorel … #2"), and the team of one.
/// @{
inline AdapterId AdapterNamedIn(Session& session, const std::wstring& name) {
    for (const Adapter& adapter : session.Adapters()) {
        if (adapter.name == name) {
            return adapter.id;
        }
    }
    throw std::runtime_error("there is no such adapter");
}
inline AdapterId AdapterNamed(AskingDesk& desk, const std::wstring& name) {
    return desk.With([&](Session& session) { return AdapterNamedIn(session, name); });
}
inline TeamId TeamNamed(AskingDesk& desk, const std::wstring& name) {
    return desk.With([&](Session& session) {
        for (const Team& team : session.Teams()) {
            if (team.name == name) {
                return team.id;
            }
        }
        throw std::runtime_error("there is no such team");
    });
}
/// @}

} // namespace quillet::tests
