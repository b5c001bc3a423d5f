// Teams in words, and in the order that helps to choose.
#include "model/TeamWords.h"

#include <algorithm>
#include <iterator>

namespace quillet::pages {

namespace {

struct ModeWords {
    TeamMode mode;
    TextId about;
};
/// The best first.
constexpr ModeWords kModes[] = {
    {TeamMode::AdaptiveLoadBalancing, TextId::AboutAdaptiveLoadBalancing},
    {TeamMode::VirtualMachineLoadBalancing, TextId::AboutVirtualMachineLoadBalancing},
    {TeamMode::DynamicLinkAggregation, TextId::AboutDynamicLinkAggregation},
    {TeamMode::StaticLinkAggregation, TextId::AboutStaticLinkAggregation},
    {TeamMode::GigabitLinkAggregation, TextId::AboutGigabitLinkAggregation},
    {TeamMode::FaultTolerance, TextId::AboutFaultTolerance},
    {TeamMode::SwitchFaultTolerance, TextId::AboutSwitchFaultTolerance},
};

} // namespace

std::wstring AboutMode(TeamMode mode) {
    const auto* found = std::ranges::find(kModes, mode, &ModeWords::mode);
    return found != std::end(kModes) ? Say(found->about) : std::wstring();
}

std::vector<TeamMode> BestFirst(const std::vector<OfferedTeamMode>& offered) {
    std::vector<TeamMode> modes;
    for (const ModeWords& known : kModes) {
        if (std::ranges::find(offered, known.mode, &OfferedTeamMode::mode) != offered.end()) {
            modes.push_back(known.mode);
        }
    }
    return modes;
}

Flags<TeamProblem> Without(Flags<TeamProblem> problems, std::initializer_list<TeamProblem> others) {
    std::uint64_t mask = problems.Mask();
    for (const TeamProblem other : others) {
        mask &= ~static_cast<std::uint64_t>(other);
    }
    return Flags<TeamProblem>::FromMask(mask);
}

std::wstring TextsOf(Flags<TeamProblem> problems) {
    return InOwnLanguage(Texts(problems));
}

} // namespace quillet::pages
