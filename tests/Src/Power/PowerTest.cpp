// Power-saving and wake-on-LAN options of an adapter.
#include "ProviderTest.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr DWORD kNone = 0xFFFFFFFF;

// {A} has every option, {B} has some, {C} none.
constexpr const char* kMachine = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{B}"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{C}"; };
    instance of Zorel_PowerConfiguration {
        DeviceID = "{A}"; SavePowerNowEnabled = 2; AutoPowerSaveModeEnabled = 1; ReduceSpeedOnPowerDown = 0;
        SmartPowerDown = 1; EnhancedASPMPowerSaver = 0; ACBSMode = 1; LinkSpeedBatterySaver = 0;
        SystemIdlePowerSaver = 1; WakeFromPowerOff = 1; WakeOnLink = 0; WakeOnMagicPacket = 1;
        WakeOnDirectedPacket = 0; WakeOnPattern = 1; };
    instance of Zorel_PowerConfiguration {
        DeviceID = "{B}"; SavePowerNowEnabled = 0; SmartPowerDown = 0; WakeOnMagicPacket = 0; };)";

std::wstring PowerPath(const wchar_t* id) {
    return LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_PhysicalEthernetAdapter.DeviceID=")" + std::wstring(id) +
           L"\"";
}

class PowerTest : public ProviderTest {
  protected:
    void SetUp() override {
        UseText(kMachine);
        Connect();
    }
    /// The names and values of the in-parameters of the only method call since the last time, as put.
    std::vector<std::string> Parameters(const wchar_t* method) {
        std::vector<std::string> parameters;
        unsigned calls = 0;
        for (const JournalEntry& call : Calls()) {
            if (call.operation != Operation::ExecMethod) {
                continue;
            }
            ++calls;
            EXPECT_EQ(call.method, method);
            for (const NamedValue& argument : call.arguments) {
                EXPECT_EQ(argument.vt, VT_I4) << Narrow(argument.name);
                const auto* scalar = argument.value.AsScalar();
                const auto* number = scalar ? std::get_if<std::uint64_t>(scalar) : nullptr;
                parameters.push_back(Narrow(argument.name) + "=" + (number ? std::to_string(*number) : "?"));
            }
        }
        EXPECT_EQ(calls, 1u);
        return parameters;
    }
    std::int64_t Kept(const wchar_t* id, const wchar_t* option) const {
        return machine->Store()
            .FindInstance(L"Zorel_PowerConfiguration.DeviceID=\"" + std::wstring(id) + L"\"")
            ->Number(option, -1);
    }
    const std::wstring kA = PowerPath(L"{A}");
    const std::wstring kB = PowerPath(L"{B}");
    const std::wstring kC = PowerPath(L"{C}");
    CAdapterPowerUsageInfo power;
    CAdapterWakeOnLanInfo wake;
};

TEST_F(PowerTest, Records_StartWithNothingAvailable) {
    EXPECT_EQ(power.m_eSavePower, 0u);
    for (const DWORD option :
         {power.m_dwSmartPowerDown, power.m_dwReduceSpeedOnPowerDown, power.m_dwAutoPowerSaveModeEnabled,
          power.m_dwEnhancedASPMPowerSaver, power.m_dwACBSMode, power.m_dwLinkSpeedBatterySaver,
          power.m_dwSystemIdlePowerSaver, wake.m_dwWakeFromPowerOff, wake.m_dwWakeOnLink,
          wake.m_dwWakeOnMagicPacket, wake.m_dwWakeOnDirectedPacket, wake.m_dwWakeOnPattern}) {
        EXPECT_EQ(option, kNone);
    }
}

TEST_F(PowerTest, GetPower_FillsEveryOption) {
    EXPECT_EQ(Code(quillet.GetAdapterPowerUsageOptions(kA, power)), "0x00000000");
    EXPECT_EQ(power.m_eSavePower, CAdapterPowerUsageInfo::SavePower2);
    EXPECT_EQ(power.m_dwAutoPowerSaveModeEnabled, 1u);
    EXPECT_EQ(power.m_dwReduceSpeedOnPowerDown, 0u);
    EXPECT_EQ(power.m_dwSmartPowerDown, 1u);
    EXPECT_EQ(power.m_dwEnhancedASPMPowerSaver, 0u);
    EXPECT_EQ(power.m_dwACBSMode, 1u);
    EXPECT_EQ(power.m_dwLinkSpeedBatterySaver, 0u);
    EXPECT_EQ(power.m_dwSystemIdlePowerSaver, 1u);
    EXPECT_THAT(Called(), ElementsAre(testing::StartsWith("ExecMethod "))) << "no class is fetched";
}

TEST_F(PowerTest, GetPower_ReadsInTheProvidersOrder) {
    RecordLocalCalls();
    EXPECT_EQ(Code(quillet.GetAdapterPowerUsageOptions(kA, power)), "0x00000000");
    std::vector<std::string> read;
    for (const JournalEntry& call : Calls()) {
        if (call.operation == Operation::Get) {
            read.push_back(Narrow(call.target));
        }
    }
    EXPECT_THAT(read, ElementsAre("SavePowerNowEnabled", "AutoPowerSaveModeEnabled", "ReduceSpeedOnPowerDown",
                                  "SmartPowerDown", "EnhancedASPMPowerSaver", "ACBSMode",
                                  "LinkSpeedBatterySaver", "SystemIdlePowerSaver", "ReturnValue"));
}

TEST_F(PowerTest, GetPower_NullParameters_AreNotAvailable) {
    power.m_eSavePower = CAdapterPowerUsageInfo::SavePower2;
    power.m_dwACBSMode = 7;
    EXPECT_EQ(Code(quillet.GetAdapterPowerUsageOptions(kC, power)), "0x00000000");
    EXPECT_EQ(power.m_eSavePower, CAdapterPowerUsageInfo::SavePower0);
    EXPECT_EQ(power.m_dwACBSMode, kNone);
    EXPECT_EQ(Code(quillet.GetAdapterPowerUsageOptions(kB, power)), "0x00000000");
    EXPECT_EQ(power.m_dwSmartPowerDown, 0u);
    EXPECT_EQ(power.m_dwAutoPowerSaveModeEnabled, kNone);
}

TEST_F(PowerTest, GetPower_FailedReads_AreNamed) {
    const std::pair<const wchar_t*, const char*> reads[] = {
        {L"SavePowerNowEnabled", "L_PARAM_ETHERNETADAPTER_PWR_SAVEPWRENB"},
        {L"EnhancedASPMPowerSaver", "L_PARAM_ETHERMETADAPTER_PWR_ASPMPWRSVR"},
        {L"ReturnValue", "L_METHOD_RETURN"},
    };
    for (const auto& [property, symbol] : reads) {
        Fail(Operation::Get, WBEM_E_ACCESS_DENIED, property);
        EXPECT_EQ(Code(quillet.GetAdapterPowerUsageOptions(kA, power)), "0x80041003") << symbol;
        EXPECT_THAT(Traced(), Contains("GetPropertyAsLong -> pAdapter_OutParams, " + std::string(symbol)));
        machine->Rules().Clear();
    }
    Fail(Operation::ExecMethod, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.GetAdapterPowerUsageOptions(kA, power)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("ExecMethod -> wsAdapterID, L_METHOD_ETHERNETADAPTER_GETPWRUSAGE"));
    machine->Rules().Clear();
    Spoil(Operation::ExecMethod, Effect::NoOutParameters);
    EXPECT_EQ(Code(quillet.GetAdapterPowerUsageOptions(kA, power)), "0x80004005");
}

TEST_F(PowerTest, SetPower_OfAFreshRecord_PutsOnlyTheMode) {
    EXPECT_EQ(Code(quillet.SetAdapterPowerUsageOptions(kA, power)), "0x00000000");
    EXPECT_THAT(Parameters(L"SetPowerUsageOptions"), ElementsAre("SavePowerNowEnabled=0"));
    EXPECT_EQ(Kept(L"{A}", L"SavePowerNowEnabled"), 0);
    EXPECT_EQ(Kept(L"{A}", L"SmartPowerDown"), 1) << "left alone";
}

TEST_F(PowerTest, SetPower_PutsInTheProvidersOrderAndAnyNumberButZeroAsOne) {
    power.m_eSavePower = CAdapterPowerUsageInfo::SavePower1;
    power.m_dwSmartPowerDown = 0;
    power.m_dwReduceSpeedOnPowerDown = 5;
    power.m_dwAutoPowerSaveModeEnabled = 0;
    power.m_dwEnhancedASPMPowerSaver = 0xFFFFFFFE;
    power.m_dwACBSMode = 1;
    power.m_dwLinkSpeedBatterySaver = 0x80000000;
    power.m_dwSystemIdlePowerSaver = 0;
    EXPECT_EQ(Code(quillet.SetAdapterPowerUsageOptions(kA, power)), "0x00000000");
    EXPECT_THAT(Parameters(L"SetPowerUsageOptions"),
                ElementsAre("SavePowerNowEnabled=1", "AutoPowerSaveModeEnabled=0", "ReduceSpeedOnPowerDown=1",
                            "SmartPowerDown=0", "EnhancedASPMPowerSaver=1", "ACBSMode=1",
                            "LinkSpeedBatterySaver=1", "SystemIdlePowerSaver=0"));
    EXPECT_EQ(Kept(L"{A}", L"ReduceSpeedOnPowerDown"), 1);
}

TEST_F(PowerTest, SetPower_WhatIsNotAvailable_StaysUnset) {
    power.m_dwSmartPowerDown = 1;
    EXPECT_EQ(Code(quillet.SetAdapterPowerUsageOptions(kB, power)), "0x00000000");
    EXPECT_THAT(Parameters(L"SetPowerUsageOptions"),
                ElementsAre("SavePowerNowEnabled=0", "SmartPowerDown=1"));
}

TEST_F(PowerTest, SetPower_ModeOutOfRange_RunsNoMethod) {
    for (const DWORD mode : {3u, 0xFFFFFFFFu}) {
        power.m_eSavePower = static_cast<CAdapterPowerUsageInfo::SavePower>(mode);
        EXPECT_EQ(Code(quillet.SetAdapterPowerUsageOptions(kA, power)), "0x80004005");
        EXPECT_THAT(Traced(), Contains("m_eSavePower out of range"));
    }
    EXPECT_TRUE(CallsOf(Operation::ExecMethod).empty());
}

TEST_F(PowerTest, SetPower_Failures_AreNamed) {
    struct {
        Operation operation;
        const wchar_t* target;
        const char* line;
    } const steps[] = {
        {Operation::GetObject, L"", "GetObject -> L_CLASS_ZOREL_ETHERNETADAPTER"},
        {Operation::GetMethod, L"", "GetMethod -> L_METHOD_ETHERNETADAPTER_SETPWRUSAGE"},
        {Operation::Put, L"SavePowerNowEnabled", "Put -> L_PARAM_ETHERNETADAPTER_PWR_SAVEPWRENB"},
        {Operation::Put, L"EnhancedASPMPowerSaver", "Put -> L_PARAM_ETHERMETADAPTER_PWR_ASPMPWRSVR"},
        {Operation::ExecMethod, L"", "ExecMethod -> wsAdapterID, L_METHOD_ETHERNETADAPTER_SETPWRUSAGE"},
        {Operation::Get, L"ReturnValue", "GetPropertyAsLong -> pAdapter_OutParams, L_METHOD_RETURN"},
    };
    power.m_dwEnhancedASPMPowerSaver = 1;
    for (const auto& step : steps) {
        Fail(step.operation, WBEM_E_ACCESS_DENIED, step.target);
        EXPECT_EQ(Code(quillet.SetAdapterPowerUsageOptions(kA, power)), "0x80041003") << step.line;
        EXPECT_THAT(Traced(), Contains(step.line));
        machine->Rules().Clear();
    }
    Spoil(Operation::GetObject, Effect::NullObject);
    EXPECT_EQ(Code(quillet.SetAdapterPowerUsageOptions(kA, power)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("GetObject -> L_CLASS_ZOREL_ETHERNETADAPTER -> NULL"));
}

TEST_F(PowerTest, SetPower_OptionThatThePortDoesNotHave_IsRefusedAndNothingChanges) {
    power.m_eSavePower = CAdapterPowerUsageInfo::SavePower1;
    power.m_dwACBSMode = 1;
    EXPECT_EQ(Code(quillet.SetAdapterPowerUsageOptions(kB, power)), "0x8004102F");
    EXPECT_EQ(Kept(L"{B}", L"SavePowerNowEnabled"), 0);
}

TEST_F(PowerTest, GetWake_FillsEveryOptionInOrder) {
    RecordLocalCalls();
    EXPECT_EQ(Code(quillet.GetAdapterWakeOnLanOptions(kA, wake)), "0x00000000");
    EXPECT_EQ(wake.m_dwWakeFromPowerOff, 1u);
    EXPECT_EQ(wake.m_dwWakeOnLink, 0u);
    EXPECT_EQ(wake.m_dwWakeOnMagicPacket, 1u);
    EXPECT_EQ(wake.m_dwWakeOnDirectedPacket, 0u);
    EXPECT_EQ(wake.m_dwWakeOnPattern, 1u);
    std::vector<std::string> read;
    for (const JournalEntry& call : Calls()) {
        if (call.operation == Operation::Get) {
            read.push_back(Narrow(call.target));
        }
    }
    EXPECT_THAT(read, ElementsAre("WakeFromPowerOff", "WakeOnLink", "WakeOnMagicPacket",
                                  "WakeOnDirectedPacket", "WakeOnPattern", "ReturnValue"));
}

TEST_F(PowerTest, GetWake_NullParameter_IsNotAvailable) {
    Spoil(Operation::Get, Effect::NullValue, L"WakeOnLink");
    wake.m_dwWakeOnLink = 1;
    EXPECT_EQ(Code(quillet.GetAdapterWakeOnLanOptions(kA, wake)), "0x00000000");
    EXPECT_EQ(wake.m_dwWakeOnLink, kNone);
    EXPECT_EQ(wake.m_dwWakeOnMagicPacket, 1u);
}

TEST_F(PowerTest, GetWake_Refused_IsNamed) {
    Fail(Operation::ExecMethod, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.GetAdapterWakeOnLanOptions(kA, wake)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("ExecMethod -> wsAdapterID, L_METHOD_ETHERNETADAPTER_GETWAKEONLANUSAGE"));
}

TEST_F(PowerTest, SetWake_PutsInDeclaredOrderWithoutARangeCheck) {
    wake.m_dwWakeFromPowerOff = 5;
    wake.m_dwWakeOnLink = 0;
    wake.m_dwWakeOnMagicPacket = 1;
    wake.m_dwWakeOnDirectedPacket = 0xFFFFFFFE;
    wake.m_dwWakeOnPattern = 0;
    EXPECT_EQ(Code(quillet.SetAdapterWakeOnLanOptions(kA, wake)), "0x00000000");
    EXPECT_THAT(Parameters(L"SetWakeOnLanPowerOptions"),
                ElementsAre("WakeFromPowerOff=1", "WakeOnLink=0", "WakeOnMagicPacket=1",
                            "WakeOnDirectedPacket=1", "WakeOnPattern=0"));
}

TEST_F(PowerTest, SetWake_OfAFreshRecord_PutsNothing) {
    EXPECT_EQ(Code(quillet.SetAdapterWakeOnLanOptions(kB, wake)), "0x00000000");
    EXPECT_THAT(Parameters(L"SetWakeOnLanPowerOptions"), IsEmpty());
    EXPECT_EQ(Kept(L"{B}", L"WakeOnMagicPacket"), 0);
}

TEST_F(PowerTest, SetWake_Failures_AreNamed) {
    wake.m_dwWakeOnPattern = 1;
    struct {
        Operation operation;
        const wchar_t* target;
        const char* line;
    } const steps[] = {
        {Operation::GetMethod, L"", "GetMethod -> L_METHOD_ETHERNETADAPTER_SETWAKEONLANUSAGE"},
        {Operation::Put, L"WakeOnPattern", "Put -> L_PARAM_ETHERNETADAPTER_WOL_PATTERN"},
        {Operation::ExecMethod, L"", "ExecMethod -> wsAdapterID, L_METHOD_ETHERNETADAPTER_SETWAKEONLANUSAGE"},
    };
    for (const auto& step : steps) {
        Fail(step.operation, WBEM_E_ACCESS_DENIED, step.target);
        EXPECT_EQ(Code(quillet.SetAdapterWakeOnLanOptions(kA, wake)), "0x80041003") << step.line;
        EXPECT_THAT(Traced(), Contains(step.line));
        machine->Rules().Clear();
    }
}

TEST_F(PowerTest, Reapply_PutsNothingAndNamesItsFailureAsEver) {
    EXPECT_EQ(Code(quillet.SetAdapterPowerManagementCapabilities(kA)), "0x00000000");
    EXPECT_THAT(Parameters(L"SetPowerMgmtCapabilities"), IsEmpty());
    Fail(Operation::GetMethod, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.SetAdapterPowerManagementCapabilities(kA)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("GetMethod -> L_METHOD_ETHERNETADAPTER_SETPOWERMGMTCAP"));
    machine->Rules().Clear();
    EXPECT_EQ(Code(quillet.SetAdapterPowerManagementCapabilities(kC)), "0x8004100C");
    EXPECT_THAT(Traced(), Contains("ExecMethod -> wsAdapterID, L_METHOD_ETHERNETADAPTER_SETWAKEONLANUSAGE"));
}

TEST_F(PowerTest, All_EmptyIdentifierOrNoConnection_Fail) {
    const std::function<HRESULT(const std::wstring&)> operations[] = {
        [&](const std::wstring& id) { return quillet.GetAdapterPowerUsageOptions(id, power); },
        [&](const std::wstring& id) { return quillet.SetAdapterPowerUsageOptions(id, power); },
        [&](const std::wstring& id) { return quillet.GetAdapterWakeOnLanOptions(id, wake); },
        [&](const std::wstring& id) { return quillet.SetAdapterWakeOnLanOptions(id, wake); },
        [&](const std::wstring& id) { return quillet.SetAdapterPowerManagementCapabilities(id); },
    };
    for (const auto& operation : operations) {
        EXPECT_EQ(Code(operation(L"")), "0x80004005");
        EXPECT_THAT(Traced(), Contains("(wsAdapterID.empty())"));
        EXPECT_THAT(Called(), IsEmpty());
        FailEachProviderCall([&] { return operation(kA); });
    }
    quillet.UninitQuillet();
    for (const auto& operation : operations) {
        EXPECT_EQ(Code(operation(kA)), "0x80041001");
        EXPECT_THAT(Traced(), Contains("((pIWbemService == NULL) || (pIWbemContext == NULL))"));
    }
}

TEST_F(PowerTest, All_AVerdictThatIsNotZero_IsTracedAndNotReturned) {
    const std::pair<std::function<HRESULT()>, const char*> operations[] = {
        {[&] { return quillet.GetAdapterPowerUsageOptions(kA, power); },
         "GetAdapterPowerUsageOptions -> ReturnValue 5"},
        {[&] { return quillet.SetAdapterPowerUsageOptions(kA, power); },
         "SetAdapterPowerUsageOptions -> ReturnValue 5"},
        {[&] { return quillet.GetAdapterWakeOnLanOptions(kA, wake); },
         "GetAdapterWakeOnLanOptions -> ReturnValue 5"},
        {[&] { return quillet.SetAdapterWakeOnLanOptions(kA, wake); },
         "SetAdapterWakeOnLanOptions -> ReturnValue 5"},
        {[&] { return quillet.SetAdapterPowerManagementCapabilities(kA); },
         "SetAdapterPowerManagementCapabilities -> ReturnValue 5"},
    };
    for (const auto& [operation, line] : operations) {
        FaultRule rule;
        rule.effect = Effect::Verdict;
        rule.verdict = 5;
        Inject(rule);
        EXPECT_EQ(Code(operation()), "0x00000000") << line;
        EXPECT_THAT(Traced(), Contains(line));
        machine->Rules().Clear();
    }
}

} // namespace
