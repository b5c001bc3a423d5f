#include "Teams/TeamFixture.h"

#include <algorithm>

using quillet::simulator::Scalar;
using quillet::simulator::Value;

const char* const TeamTest::MACHINE = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter as $A {
        DeviceID = "{A}"; Caption = "Port A"; OriginalDisplayName = "Adapter A"; AdapterStatus = 1;
        HardwareStatus = 3; Speed = 1000000000; FullDuplex = TRUE; PermanentAddress = "02-00-5E-00-00-0A";
        Capabilities = {3, 4, 5, 8, 9, 10, 12, 32, 33, 34, 36, 37, 46, 47, 68}; };
    instance of Zorel_PhysicalEthernetAdapter as $B {
        DeviceID = "{B}"; Caption = "Port B"; OriginalDisplayName = "Adapter B"; AdapterStatus = 1;
        HardwareStatus = 3; Speed = 1000000000; FullDuplex = TRUE; PermanentAddress = "02-00-5E-00-00-0B";
        Capabilities = {3, 4, 5, 8, 9, 10, 12, 32, 33, 34, 36, 37, 46, 47, 68}; };
    instance of Zorel_PhysicalEthernetAdapter as $C {
        DeviceID = "{C}"; Caption = "Port C"; OriginalDisplayName = "Adapter C"; AdapterStatus = 1;
        HardwareStatus = 3; Speed = 1000000000; FullDuplex = TRUE; PermanentAddress = "02-00-5E-00-00-0C";
        Capabilities = {3, 4, 5, 8, 9, 10, 12, 32, 33, 34, 36, 37, 46, 47, 68}; };
    instance of Zorel_PhysicalEthernetAdapter as $D {
        DeviceID = "{D}"; Caption = "Port D"; OriginalDisplayName = "Adapter D"; AdapterStatus = 1;
        HardwareStatus = 3; Speed = 10000000000; FullDuplex = TRUE; PermanentAddress = "02-00-5E-00-00-0D";
        Capabilities = {3, 4, 5, 8, 9, 10, 12, 34, 35, 36, 37, 46, 47, 68}; };
    instance of Zorel_PhysicalEthernetAdapter as $E {
        DeviceID = "{E}"; Caption = "Port E"; OriginalDisplayName = "Adapter E"; AdapterStatus = 1;
        HardwareStatus = 3; Speed = 100000000; FullDuplex = TRUE; PermanentAddress = "02-00-5E-00-00-0E";
        Capabilities = {3, 4, 5, 12, 32, 33, 36, 47}; };
    instance of Zorel_TeamOfAdapters as $T {
        Name = "{T}"; Caption = "TEAM : One"; TeamingMode = 4; TeamMacAddress = "02-00-5E-00-00-0A";
        MFOEnabled = FALSE; LinksecEnabled = TRUE; BoundToHyperV = FALSE; TeamProfile = 2; };
    instance of Zorel_LogicalEthernetAdapter as $L {
        DeviceID = "{T}"; Name = "TEAM : One"; Caption = "TEAM : One"; Status = "OK"; StatusInfo = 3;
        Availability = 3; Speed = 1000000000; FullDuplex = TRUE; };
    instance of Zorel_NetworkVirtualAdapter { SystemElement = $L; SameElement = $T; };
    instance of Zorel_802dot1QVLANService { Name = "{T}"; Caption = "VLAN service of TEAM : One"; };
    instance of Zorel_TeamedMemberAdapter {
        GroupComponent = $T; PartComponent = $A; AdapterFunction = 1; AdapterStatus = 1; };
    instance of Zorel_TeamedMemberAdapter {
        GroupComponent = $T; PartComponent = $B; AdapterFunction = 2; AdapterStatus = 1; };)";

std::wstring TeamTest::Membership(const wchar_t* team, const wchar_t* adapter) {
    const auto escaped = [](const std::wstring& path) {
        std::wstring text;
        for (const wchar_t character : path) {
            if (character == L'"' || character == L'\\') {
                text += L'\\';
            }
            text += character;
        }
        return text;
    };
    return LR"(Zorel_TeamedMemberAdapter.GroupComponent=")" + escaped(Team(team)) + LR"(",PartComponent=")" +
           escaped(Adapter(adapter)) + L"\"";
}

void TeamTest::Set(const std::wstring& path, const wchar_t* property, Value value) {
    const auto found = machine->Store().FindInstance(path);
    ASSERT_NE(found, nullptr) << Narrow(path);
    quillet::simulator::Instance changed = *found;
    ASSERT_TRUE(changed.Set(property, std::move(value)));
    ASSERT_EQ(Code(machine->Store().PutInstance(changed)), "0x00000000");
}

long long TeamTest::Number(const std::wstring& path, const wchar_t* property) {
    const auto found = machine->Store().FindInstance(path);
    return found != nullptr ? found->Number(property, -1) : -2;
}

std::string TeamTest::Text(const std::wstring& path, const wchar_t* property) {
    const auto found = machine->Store().FindInstance(path);
    return found != nullptr ? Narrow(found->Text(property)) : "no such instance";
}

std::vector<std::string> TeamTest::Steps() {
    std::vector<std::string> lines = Traced();
    std::erase_if(lines, [](const std::string& line) {
        return line == "dwErrorCode: %l" || line == "pInstance->Get() passed" ||
               line == "variant is empty or null" || line == "CQuillet::ChangeContext" ||
               line == " Unset Partial Retrieval!!" || line == "Setting for partial data!!" ||
               line == "Else Partial Retrieval!!";
    });
    return lines;
}

namespace {

std::string ScalarText(const Scalar& scalar) {
    if (const auto* flag = std::get_if<bool>(&scalar)) {
        return *flag ? "true" : "false";
    }
    if (const auto* number = std::get_if<std::int64_t>(&scalar)) {
        return std::to_string(*number);
    }
    if (const auto* number = std::get_if<std::uint64_t>(&scalar)) {
        return std::to_string(*number);
    }
    const auto* text = std::get_if<std::wstring>(&scalar);
    return text ? Narrow(*text) : "?";
}

std::string ValueText(const Value& value) {
    if (const Scalar* scalar = value.AsScalar()) {
        return ScalarText(*scalar);
    }
    std::string text = "[";
    if (const Value::Array* array = value.AsArray()) {
        for (const auto& element : *array) {
            text += (text.size() > 1 ? ", " : "") + (element ? ScalarText(*element) : std::string("null"));
        }
    }
    return text + "]";
}

const char* TypeText(VARTYPE vt) {
    switch (vt) {
    case VT_I4:
        return "VT_I4";
    case VT_BOOL:
        return "VT_BOOL";
    case VT_BSTR:
        return "VT_BSTR";
    case VT_ARRAY | VT_BSTR:
        return "VT_ARRAY|VT_BSTR";
    default:
        return "another type";
    }
}

} // namespace

std::vector<std::string> TeamTest::Changes() {
    std::vector<std::string> lines;
    for (const JournalEntry& call : Calls()) {
        if (call.operation != Operation::ExecMethod && call.operation != Operation::PutInstance &&
            call.operation != Operation::DeleteInstance) {
            continue;
        }
        std::string line =
            Narrow(quillet::simulator::OperationName(call.operation)) + " " + Narrow(call.target);
        if (!call.method.empty()) {
            line += " " + Narrow(call.method);
        }
        for (const NamedValue& argument : call.arguments) {
            line += std::string(" ") + Narrow(argument.name) + ":" + TypeText(argument.vt) + "=" +
                    ValueText(argument.value);
        }
        char flags[32];
        std::snprintf(flags, sizeof flags, " flags=0x%lX", static_cast<unsigned long>(call.flags));
        line += call.flags != 0 ? flags : "";
        const NamedValue* set = call.ContextValue(L"ClientSetId");
        line += " set=" + (set ? ValueText(set->value) : std::string("none"));
        lines.push_back(line);
    }
    return lines;
}
