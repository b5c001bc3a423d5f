// Reading fault rules.
#include "app/FaultRules.h"

#include "ending/Failure.h"
#include "texts/Text.h"

#include <charconv>
#include <cstdint>
#include <limits>
#include <string_view>
#include <utility>

namespace quilletctl {

namespace {

using quillet::simulator::Effect;
using quillet::simulator::FaultRule;
using quillet::wmi::Operation;

/// Why a text is no rule.
struct Mistake {
    std::string why;
};

/// What stands before a separator, and takes both away.
std::string_view CutBefore(std::string_view& text, char separator) {
    const std::size_t end = text.find(separator);
    const std::string_view part = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    return part;
}

std::uint32_t NumberOf(std::string_view text) {
    const bool isHexadecimal = text.starts_with("0x");
    const bool isNegative = text.starts_with('-');
    const std::string_view digits = text.substr(isHexadecimal ? 2 : isNegative ? 1 : 0);
    std::uint32_t number = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), number, isHexadecimal ? 16 : 10);
    if (error != std::errc() || end != digits.data() + digits.size()) {
        throw Mistake{"\"" + std::string(text) + "\" is no number"};
    }
    return isNegative ? 0U - number : number;
}

void ReadOperation(FaultRule& rule, std::string_view name) {
    if (name == "*") {
        rule.operation.reset();
        return;
    }
    rule.operation = quillet::wmi::OperationByName(ToWide(name));
    if (!rule.operation) {
        throw Mistake{"\"" + std::string(name) + "\" is no call"};
    }
}

/// The method of a call that has one, perhaps behind its class and a dot; else a class or a property.
void ReadPlace(FaultRule& rule, std::string_view where) {
    if (where == "*") {
        return;
    }
    const bool hasMethod = rule.operation == Operation::ExecMethod || rule.operation == Operation::GetMethod;
    const std::size_t dot = hasMethod ? where.find('.') : std::string_view::npos;
    if (dot != std::string_view::npos) {
        rule.target = ToWide(where.substr(0, dot));
        where.remove_prefix(dot + 1);
    }
    (hasMethod ? rule.method : rule.target) = ToWide(where);
}

void ReadCount(FaultRule& rule, std::string_view count) {
    rule.repeat = count.ends_with('+');
    if (rule.repeat) {
        count.remove_suffix(1);
    }
    rule.nth = NumberOf(count);
}

void ReadNumber(FaultRule& rule, std::string_view text) {
    const std::uint32_t number = NumberOf(text);
    switch (rule.effect) {
    case Effect::Fail:
    case Effect::FailStatus:
    case Effect::PowerCut:
        rule.code = static_cast<HRESULT>(number);
        return;
    case Effect::Verdict:
        rule.verdict = static_cast<LONG>(number);
        return;
    case Effect::WrongType:
        rule.vt = static_cast<VARTYPE>(number);
        return;
    case Effect::UnreadableElement:
        rule.element = static_cast<LONG>(number);
        return;
    case Effect::HugeString:
        rule.size = number;
        return;
    case Effect::Delay:
        rule.milliseconds = number;
        return;
    default:
        throw Mistake{"this effect takes no number"};
    }
}

void ReadEffect(FaultRule& rule, std::string_view text) {
    if (text.starts_with("0x")) {
        rule.code = static_cast<HRESULT>(NumberOf(text));
        return;
    }
    const bool hasNumber = text.find(':') != std::string_view::npos;
    const std::string_view name = CutBefore(text, ':');
    const auto effect = quillet::simulator::EffectByName(ToWide(name));
    if (!effect) {
        throw Mistake{"\"" + std::string(name) + "\" is neither a code (0x...) nor an effect"};
    }
    rule.effect = *effect;
    if (hasNumber) {
        ReadNumber(rule, text);
    }
}

FaultRule Read(std::string_view text) {
    FaultRule rule;
    const bool hasEffect = text.find('=') != std::string_view::npos;
    std::string_view call = CutBefore(text, '=');
    ReadOperation(rule, CutBefore(call, ':'));
    if (!call.empty()) {
        ReadPlace(rule, CutBefore(call, ':'));
    }
    if (!call.empty()) {
        ReadCount(rule, call);
    }
    if (hasEffect) {
        ReadEffect(rule, text);
    }
    try {
        quillet::simulator::Faults().Add(rule);
    } catch (const std::invalid_argument& refused) {
        throw Mistake{refused.what()};
    }
    return rule;
}

} // namespace

FaultRule ParseFault(const std::string& text) {
    try {
        return Read(text);
    } catch (const Mistake& mistake) {
        throw UsageError("--fault: " + mistake.why + "; a rule reads " + kFaultForm +
                         ", such as ExecMethod:CreateVLAN:2=0x80041001");
    }
}

} // namespace quilletctl
