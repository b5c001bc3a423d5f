// What codes and masks are in words.
#include "Connection.h"

#include <map>

namespace quillet::python {

namespace {

using Words = std::vector<std::wstring>;

template <class Enum>
Words WordOf(std::int64_t number) {
    return {Text(static_cast<Enum>(number))};
}

template <class Bit>
Words SentencesOf(std::int64_t mask) {
    return Texts(Flags<Bit>::FromMask(static_cast<std::uint64_t>(mask)));
}

Words ConditionsOf(std::int64_t mask) {
    return {Text(Flags<AdapterCondition>::FromMask(static_cast<std::uint64_t>(mask)))};
}

template <class Enum>
std::pair<const std::string, Words (*)(std::int64_t)> Known(Words (*words)(std::int64_t) = &WordOf<Enum>) {
    return {kEnumName<Enum>, words};
}

/// The words of a member of a class of quillet._words; none where there are none.
Words WordsOf(const std::string& name, std::int64_t number) {
    static const std::map<std::string, Words (*)(std::int64_t)> kKnown{
        Known<LinkSpeed>(),
        Known<Duplex>(),
        Known<LinkSecurityStatus>(),
        Known<HardwareStatus>(),
        Known<StatusInfo>(),
        Known<Availability>(),
        Known<Capability>(),
        Known<TeamMode>(),
        Known<MemberRole>(),
        Known<MemberStatus>(),
        Known<AutoDetectStatus>(),
        Known<SwitchTestStatus>(),
        Known<VlanSupport>(),
        Known<IscsiStatus>(),
        Known<AdapterCondition>(&ConditionsOf),
        Known<TeamProblem>(&SentencesOf<TeamProblem>),
        Known<VlanProblem>(&SentencesOf<VlanProblem>),
        Known<RssProblem>(&SentencesOf<RssProblem>),
    };
    const auto found = kKnown.find(name);
    return found == kKnown.end() ? Words() : found->second(number);
}

} // namespace

template <class Enum>
std::pair<const std::string, ValueSource> Sourced() {
    return {kEnumName<Enum>, kValueSource<Enum>};
}

std::wstring ProviderText(Connection& connection, const std::string& name, std::int32_t number) {
    static const std::map<std::string, ValueSource> kSources{
        Sourced<StatusInfo>(),         Sourced<Availability>(), Sourced<HardwareStatus>(),
        Sourced<LinkSecurityStatus>(), Sourced<Capability>(),   Sourced<TeamMode>(),
        Sourced<MemberRole>(),         Sourced<MemberStatus>(), Sourced<IscsiStatus>(),
    };
    const auto found = kSources.find(name);
    return connection.ProviderText(found == kSources.end() ? ValueSource() : found->second, number);
}

std::wstring Unknown(std::int64_t number, const std::wstring& what) {
    return UnknownNumber(number, what);
}

Words UnknownInMask(std::uint64_t mask, const std::wstring& what) {
    return UnknownBits(Flags<ProviderBit>::FromMask(mask), what);
}

std::string Described(std::uint32_t code) {
    return DescribeResult(static_cast<std::int32_t>(code));
}

std::string Explained(std::uint32_t code, const std::string& reason) {
    return ExplainResult(static_cast<std::int32_t>(code), reason);
}

bool IsReadable(std::int32_t code) {
    return FlashVerdict{code}.IsReadable();
}

void DefineWords(pybind11::module_& module, pybind11::class_<Connection>& session) {
    module.def("words", &WordsOf);
    module.def("current_text", &CurrentText);
    module.def("current_number", &CurrentNumber);
    module.def("is_jumbo_frame_setting", &IsJumboFrameSetting);
    module.def("image_types", &ImageTypes);
    module.def("passed", [](const TestResult& result) { return result.Passed(); });
    module.def("is_readable", &IsReadable);
    module.def("has_switch_test", &HasSwitchTest);
    module.def("unknown_number", Checked(&Unknown));
    module.def("unknown_bits", Checked(&UnknownInMask));
    module.def("describe_result", Checked(&Described));
    module.def("explain_result", Checked(&Explained));
    module.attr("MOST_TEAM_MEMBERS") = kMostTeamMembers;
    DefineAs(session, "provider_text", &ProviderText);
}

} // namespace quillet::python
