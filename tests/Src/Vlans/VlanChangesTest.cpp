// Adding, changing and removing VLANs.
#include "Vlans/VlanMachine.h"

namespace {

using quillet::simulator::Value;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using Access = QuilletTestAccess;

constexpr const char* kClass = "GetObject Zorel_802dot1QVLANService -> 0x00000000";

class VlanChangesTest : public VlanTest {
  protected:
    static std::string Service(const char* parent) {
        return std::string(R"(Zorel_802dot1QVLANService.Name=")") + parent + "\"";
    }
    static std::string Full(const std::string& relative) {
        return R"(\\TESTHOST\ROOT\MarloLUM2:)" + relative;
    }
    /// The numbers of a parent's VLANs, from the machine itself.
    std::vector<std::int64_t> NumbersOn(const wchar_t* parent) const {
        std::vector<std::int64_t> numbers;
        for (const auto& vlan : machine->Store().Instances(L"Zorel_VLAN")) {
            if (vlan->Text(L"ParentID") == parent) {
                numbers.push_back(vlan->Number(L"VLANNumber"));
            }
        }
        return numbers;
    }
    /// The client set in the context of a call; -1 when there is none.
    static LONG ClientSetOf(const JournalEntry& call) {
        const NamedValue* set = call.ContextValue(L"ClientSetId");
        if (!set || set->vt != VT_I4) {
            return -1;
        }
        return static_cast<LONG>(std::get<std::int64_t>(*set->value.AsScalar()));
    }
    static void ExpectPut(const NamedValue& put, const wchar_t* name, VARTYPE vt, CIMTYPE type,
                          const Value& value) {
        EXPECT_EQ(put.name, name);
        EXPECT_EQ(put.vt, vt);
        EXPECT_EQ(put.type, type);
        EXPECT_TRUE(put.value == value) << Narrow(name);
    }
};

// --- adding ---

TEST_F(VlanChangesTest, Add_ToAnAdapter_MakesTheVlanAndFillsTheRecord) {
    CVLAN vlan = Wanted(30, L"Lab");
    EXPECT_EQ(Code(quillet.AddVLANToAdapter(kA, vlan)), "0x00000000");
    EXPECT_EQ(vlan.m_lVLANNumber, 30);
    EXPECT_EQ(vlan.m_wsVLANName, L"Lab");
    EXPECT_EQ(vlan.m_wsParentID, L"{A}");
    EXPECT_EQ(vlan.m_wsCaption, L"Alpha - VLAN : Lab");
    EXPECT_EQ(vlan.m_eStatus, CVLAN::VlanStatusEnabled);
    EXPECT_EQ(vlan.m_wsVLANID, VlanPath(vlan.m_wsName));
    EXPECT_THAT(NumbersOn(L"{A}"), ElementsAre(10, 20, 30));
    EXPECT_THAT(Traced(),
                ElementsAre("Entering CQuillet::AddVLANToAdapter", "Entering CQuillet::AddVLANToComponent",
                            "dwErrorCode: %l", "Entering CQuillet::GetVLANService", "dwErrorCode: %l",
                            "VLAN Servie WMI ObjectID", "Exiting CQuillet::GetVLANService",
                            "Entering CQuillet::GetVLANInfo", "pInstance->Get() passed",
                            "Exiting CQuillet::GetVLANInfo", "Exiting CQuillet::AddVLANToComponent",
                            "Exiting CQuillet::AddVLANToAdapter"));
    EXPECT_THAT(
        Called(),
        ElementsAre("GetObject " + Service("{A}") + " -> 0x00000000 {ClientSetId=0}",
                    std::string(kClass) + " {ClientSetId=0}",
                    "ExecMethod " + Full(Service("{A}")) +
                        ", CreateVLAN(VLANNumber=30, Name=\"Lab\") -> 0x00000000 (outside a client set) "
                        "{ClientSetId=0}",
                    "GetObject " + Narrow(vlan.m_wsVLANID) + " -> 0x00000000 {ClientSetId=0}"));
}

TEST_F(VlanChangesTest, Add_StepsAreInOrder) {
    RecordLocalCalls();
    CVLAN vlan = Wanted(30, L"Lab");
    EXPECT_EQ(Code(Access::AddVLANToComponent(quillet, kA, vlan)), "0x00000000");
    std::vector<std::string> steps;
    for (const JournalEntry& call : Calls()) {
        if (call.operation != Operation::SetBlanket && call.operation != Operation::SetContextValue) {
            steps.push_back(Narrow(quillet::simulator::OperationName(call.operation)) + " " +
                            Narrow(call.method.empty() ? call.target : call.method));
        }
    }
    EXPECT_THAT(
        steps, ElementsAre("GetObject " + Service("{A}"), "Get __PATH", "GetObject Zorel_802dot1QVLANService",
                           "GetMethod CreateVLAN", testing::StartsWith("SpawnInstance "), "Put VLANNumber",
                           "Put Name", "ExecMethod CreateVLAN", "Get VLANPath",
                           "GetObject " + Narrow(vlan.m_wsVLANID), "Get __PATH", "Get Caption", "Get Name",
                           "Get ParentID", "Get VLANName", "Get VLANNumber", "Get StatusInfo"))
        << "the return value is not read";
}

TEST_F(VlanChangesTest, Add_InParametersHaveTheirTypes) {
    CVLAN vlan = Wanted(0, L"Untagged");
    EXPECT_EQ(Code(quillet.AddVLANToAdapter(kA, vlan)), "0x00000000") << "0 is the untagged VLAN";
    const std::vector<JournalEntry> calls = CallsOf(Operation::ExecMethod);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].flags, 0);
    ASSERT_EQ(calls[0].arguments.size(), 2u);
    ExpectPut(calls[0].arguments[0], L"VLANNumber", VT_I4, CIM_SINT32, Value::Signed(0));
    ExpectPut(calls[0].arguments[1], L"Name", VT_BSTR, CIM_STRING, Value::Text(L"Untagged"));
}

TEST_F(VlanChangesTest, Add_ToATeam_GoesThroughItsLogicalAdapter) {
    CVLAN vlan = Wanted(30, L"Lab");
    EXPECT_EQ(Code(quillet.AddVLANToTeam(kT, vlan)), "0x00000000");
    EXPECT_EQ(vlan.m_wsParentID, L"{T}");
    EXPECT_EQ(vlan.m_wsCaption, L"Team - VLAN : Lab");
    EXPECT_THAT(NumbersOn(L"{T}"), ElementsAre(0, 12, 30));
    const std::vector<std::string> trace = Traced();
    EXPECT_EQ(trace[0], "Entering CQuillet::AddVLANToTeam");
    EXPECT_EQ(trace[1], "Logical Ethernet Adapter Path");
    EXPECT_EQ(trace[2], "Entering CQuillet::AddVLANToComponent");
    EXPECT_EQ(trace.back(), "Exiting CQuillet::AddVLANToTeam");
    EXPECT_EQ(Called().front(), "GetObject " + Service("{T}") + " -> 0x00000000 {ClientSetId=0}");
}

TEST_F(VlanChangesTest, Add_BadArguments_FailBeforeAnyCall) {
    const CVLAN good = Wanted(30, L"Lab");
    struct {
        std::wstring component;
        CVLAN vlan;
    } const cases[] = {
        {L"", good}, {kA, Wanted(4096, L"Lab")}, {kA, Wanted(30, L"")}, {kA, Wanted(2147483647, L"Lab")}};
    for (const auto& each : cases) {
        CVLAN vlan = each.vlan;
        EXPECT_EQ(Code(quillet.AddVLANToAdapter(each.component, vlan)), "0x80041001");
        EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::AddVLANToAdapter",
                                          "Entering CQuillet::AddVLANToComponent",
                                          "(wsComponentID.empty()) or invalid parameters",
                                          "Exiting CQuillet::AddVLANToComponent",
                                          "Exiting CQuillet::AddVLANToAdapter"));
        EXPECT_EQ(vlan.m_lVLANNumber, each.vlan.m_lVLANNumber);
    }
    CVLAN vlan = good;
    EXPECT_EQ(Code(quillet.AddVLANToTeam(L"", vlan)), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::AddVLANToTeam", "(wsTeamID.empty())",
                                      "Exiting CQuillet::AddVLANToTeam"));
    EXPECT_EQ(Code(quillet.AddVLANToTeam(kA, vlan)), "0x80041001") << "an adapter is no team";
    EXPECT_THAT(Traced(), Contains("Auto Parser Failed"));
    vlan.m_wsVLANName.clear();
    EXPECT_EQ(Code(quillet.AddVLANToTeam(kT, vlan)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("AddVLANToComponent -> wsTeamID"));
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(VlanChangesTest, Add_TheLargestNumberThatIsLetThrough_IsTheProvidersToRefuse) {
    CVLAN vlan = Wanted(4095, L"Lab");
    EXPECT_EQ(Code(quillet.AddVLANToAdapter(kA, vlan)), "0x8004102B");
    EXPECT_THAT(Traced(), Contains("ExecMethod -> bstrObjectPath, L_METHOD_VLAN_CREATE"));
    vlan.m_lVLANNumber = -1;
    EXPECT_EQ(Code(quillet.AddVLANToAdapter(kA, vlan)), "0x8004102B");
    EXPECT_EQ(vlan.m_wsName, L"");
}

TEST_F(VlanChangesTest, Add_NoServiceOrOneOfAMember_IsRefused) {
    CVLAN vlan = Wanted(30, L"Lab");
    EXPECT_EQ(Code(quillet.AddVLANToAdapter(kN, vlan)), "0x80041002");
    EXPECT_THAT(Traced(), Contains("GetVLANService -> wsComponentID, pVLANService"));
    EXPECT_EQ(Code(quillet.AddVLANToAdapter(kM, vlan)), "0x80041016");
    EXPECT_THAT(Traced(), Contains("ExecMethod -> bstrObjectPath, L_METHOD_VLAN_CREATE"));
    EXPECT_EQ(Code(quillet.AddVLANToTeam(TeamPath(L"{U}"), vlan)), "0x80041002");
    EXPECT_THAT(Traced(), Contains("AddVLANToComponent -> wsTeamID"));
    EXPECT_EQ(vlan.m_wsName, L"");
}

TEST_F(VlanChangesTest, Add_ServiceWithoutPath_IsNamed) {
    CVLAN vlan = Wanted(30, L"Lab");
    Spoil(Operation::Get, Effect::NullValue, L"__PATH");
    EXPECT_EQ(Code(quillet.AddVLANToAdapter(kA, vlan)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("GetPropertyAsString -> pVLANService, L_ZOREL_PATH -> NULL"));
    EXPECT_EQ(Called().size(), 1u);
}

TEST_F(VlanChangesTest, Add_OddAnswers_AreNamedAndLeaveTheRecord) {
    CVLAN vlan = Wanted(30, L"Lab", L"kept");
    Spoil(Operation::ExecMethod, Effect::NoOutParameters);
    EXPECT_EQ(Code(quillet.AddVLANToAdapter(kA, vlan)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("(pIWbemClassObject_OutParams == NULL)"));
    machine->Rules().Clear();
    const std::pair<Effect, const char*> answers[] = {{Effect::NullValue, "0x80041001"},
                                                      {Effect::WrongType, "0x80041001"}};
    vlan.m_lVLANNumber = 31;
    for (const auto& [effect, code] : answers) {
        ++vlan.m_lVLANNumber;
        vlan.m_wsVLANName += L'x';
        Spoil(Operation::Get, effect, L"VLANPath");
        EXPECT_EQ(Code(quillet.AddVLANToAdapter(kA, vlan)), code);
        EXPECT_THAT(Traced(), Contains("Empty VLAN Path"));
        machine->Rules().Clear();
    }
    vlan = Wanted(40, L"Other", L"kept");
    Spoil(Operation::GetObject, Effect::NullObject, L"Zorel_VLAN");
    EXPECT_EQ(Code(quillet.AddVLANToAdapter(kA, vlan)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("((WBEM_S_NO_ERROR != hRes) || (pCompInstance == NULL))"));
    machine->Rules().Clear();
    vlan = Wanted(41, L"Another", L"kept");
    Fail(Operation::GetObject, WBEM_E_ACCESS_DENIED, L"Zorel_VLAN");
    EXPECT_EQ(Code(quillet.AddVLANToAdapter(kA, vlan)), "0x80041003");
    EXPECT_THAT(Traced(), Contains("((WBEM_S_NO_ERROR != hRes) || (pCompInstance == NULL))"));
    machine->Rules().Clear();
    vlan = Wanted(42, L"Last", L"kept");
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"StatusInfo");
    EXPECT_EQ(Code(quillet.AddVLANToAdapter(kA, vlan)), "0x80041003");
    EXPECT_EQ(vlan.m_wsName, L"kept") << "the other fields had been read";
    EXPECT_EQ(vlan.m_wsVLANID, L"");
    EXPECT_EQ(vlan.m_lVLANNumber, 42);
}

TEST_F(VlanChangesTest, Add_SignatureAndPutsFailing_AreNamed) {
    CVLAN vlan = Wanted(30, L"Lab");
    const struct {
        Operation operation;
        const wchar_t* target;
        const char* step;
    } steps[] = {
        {Operation::GetObject, L"Zorel_802dot1QVLANService", "GetObject -> L_CLASS_ZOREL_VLANSERVICE"},
        {Operation::GetMethod, L"", "GetMethod -> L_METHOD_VLAN_CREATE"},
        {Operation::SpawnInstance, L"", "SpawnInstance -> L_METHOD_VLAN_CREATE"},
        {Operation::Put, L"VLANNumber", "Put -> L_PARAM_VLAN_NUMBER"},
        {Operation::Put, L"Name", "Put -> L_PARAM_VLAN_NAME"}};
    for (const auto& step : steps) {
        SCOPED_TRACE(step.step);
        // The service's own fetch is the first call of that class.
        Fail(step.operation, WBEM_E_TYPE_MISMATCH, step.target,
             step.operation == Operation::GetObject ? 2 : 1);
        EXPECT_EQ(Code(quillet.AddVLANToAdapter(kA, vlan)), "0x80041005");
        EXPECT_THAT(Traced(), Contains(step.step));
        machine->Rules().Clear();
    }
    EXPECT_TRUE(CallsOf(Operation::ExecMethod).empty());
}

// --- changing ---

TEST_F(VlanChangesTest, Modify_WritesNameAndNumber) {
    EXPECT_EQ(Code(quillet.ModifyVLANProperty(kV1, Wanted(11, L"Phones"))), "0x00000000");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::ModifyVLANProperty", "dwErrorCode: %l",
                                      "Put Passed", "Exiting CQuillet::ModifyVLANProperty"));
    EXPECT_THAT(Called(), ElementsAre("GetObject " + Narrow(kV1) + " -> 0x00000000 {ClientSetId=0}",
                                      "PutInstance " + Narrow(kV1) +
                                          "(VLANName=\"Phones\", VLANNumber=11), flags 0x20010 -> 0x00000000 "
                                          "(outside a client set) {ClientSetId=0}",
                                      testing::StartsWith("GetCallStatus ")));
    CVLAN vlan;
    EXPECT_EQ(Code(quillet.GetVLANInfo(kV1, vlan)), "0x00000000");
    EXPECT_EQ(vlan.m_wsVLANName, L"Phones");
    EXPECT_EQ(vlan.m_lVLANNumber, 11);
    EXPECT_EQ(vlan.m_wsCaption, L"Alpha - VLAN : Phones");
}

TEST_F(VlanChangesTest, Modify_WritesBothEvenWhenOnlyOneChanged) {
    EXPECT_EQ(Code(quillet.ModifyVLANProperty(kV1, Wanted(10, L"Phones"))), "0x00000000");
    const std::vector<JournalEntry> writes = CallsOf(Operation::PutInstance);
    ASSERT_EQ(writes.size(), 1u);
    EXPECT_EQ(writes[0].target, kV1);
    EXPECT_EQ(writes[0].flags, 0x20010);
    ASSERT_EQ(writes[0].arguments.size(), 2u);
    ExpectPut(writes[0].arguments[0], L"VLANName", VT_BSTR, CIM_STRING, Value::Text(L"Phones"));
    ExpectPut(writes[0].arguments[1], L"VLANNumber", VT_I4, CIM_SINT32, Value::Signed(10));
}

TEST_F(VlanChangesTest, Modify_IgnoresTheOtherFieldsOfTheRecord) {
    CVLAN vlan = Wanted(11, L"Phones", L"{V2}");
    vlan.m_wsVLANID = VlanPath(L"{V2}");
    vlan.m_wsParentID = L"{T}";
    EXPECT_EQ(Code(quillet.ModifyVLANProperty(kV1, vlan)), "0x00000000");
    EXPECT_THAT(NumbersOn(L"{A}"), ElementsAre(11, 20));
}

TEST_F(VlanChangesTest, Modify_TheFinalStatusIsTheResult) {
    FaultRule rule;
    rule.operation = Operation::PutInstance;
    rule.effect = Effect::FailStatus;
    rule.code = static_cast<HRESULT>(WBEM_E_ACCESS_DENIED);
    Inject(rule);
    EXPECT_EQ(Code(quillet.ModifyVLANProperty(kV1, Wanted(11, L"Phones"))), "0x80041003");
    EXPECT_THAT(Traced(),
                ElementsAre("Entering CQuillet::ModifyVLANProperty", "dwErrorCode: %l", "Put Passed",
                            "pIWbemClassResult->GetCallStatus", "Exiting CQuillet::ModifyVLANProperty"));
    machine->Rules().Clear();
    Fail(Operation::GetCallStatus, WBEM_E_TRANSPORT_FAILURE);
    EXPECT_EQ(Code(quillet.ModifyVLANProperty(kV1, Wanted(11, L"Phones"))), "0x80041015");
    EXPECT_THAT(Traced(), Contains("pIWbemClassResult->GetCallStatus"));
    machine->Rules().Clear();
    EXPECT_EQ(Code(quillet.ModifyVLANProperty(kV1, Wanted(20, L"Phones"))), "0x80041019")
        << "the provider refuses a taken number at the end";
    EXPECT_THAT(Traced(), Contains("pIWbemClassResult->GetCallStatus"));
}

TEST_F(VlanChangesTest, Modify_EachStepFailing_IsNamed) {
    const CVLAN vlan = Wanted(11, L"Phones");
    EXPECT_EQ(Code(quillet.ModifyVLANProperty(VlanPath(L"{V9}"), vlan)), "0x80041002");
    EXPECT_THAT(Traced(), Contains("GetObject -> wsVLANID"));
    const struct {
        Operation operation;
        const wchar_t* target;
        const char* step;
    } steps[] = {{Operation::Put, L"VLANName", "Put -> L_PARAM_VLAN_VLANNAME"},
                 {Operation::Put, L"VLANNumber", "Put -> L_PARAM_VLAN_NUMBER"},
                 {Operation::PutInstance, L"", "PutInstance -> pVLANInstance"}};
    for (const auto& step : steps) {
        SCOPED_TRACE(step.step);
        Fail(step.operation, WBEM_E_TYPE_MISMATCH, step.target);
        EXPECT_EQ(Code(quillet.ModifyVLANProperty(kV1, vlan)), "0x80041005");
        const std::vector<std::string> trace = Traced();
        EXPECT_THAT(trace, Contains(step.step));
        EXPECT_EQ(std::count(trace.begin(), trace.end(), "Put Passed"),
                  std::wstring_view(step.target) == L"VLANName" ? 0 : 1);
        machine->Rules().Clear();
    }
    Spoil(Operation::PutInstance, Effect::NullObject);
    EXPECT_EQ(Code(quillet.ModifyVLANProperty(kV1, vlan)), "0x80041001");
    EXPECT_THAT(Traced(), Contains("PutInstance -> pWbemCallResult -> NULL"));
}

// --- removing ---

TEST_F(VlanChangesTest, Remove_DeletesTheInstance) {
    EXPECT_EQ(Code(quillet.RemoveVLAN(kV1)), "0x00000000");
    EXPECT_THAT(NumbersOn(L"{A}"), ElementsAre(20));
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::RemoveVLAN", "dwErrorCode: %l",
                                      "Exiting CQuillet::RemoveVLAN"));
    EXPECT_THAT(Called(), ElementsAre("DeleteInstance " + Narrow(kV1) +
                                      " -> 0x00000000 (outside a client set) {ClientSetId=0}"));
    EXPECT_EQ(Code(quillet.RemoveVLAN(kV1)), "0x80041002");
    EXPECT_THAT(Traced(),
                ElementsAre("Entering CQuillet::RemoveVLAN", "dwErrorCode: %l",
                            "pIWbemService -> DeleteInstance -> wsVLANID", "Exiting CQuillet::RemoveVLAN"));
}

// --- what changes have in common ---

TEST_F(VlanChangesTest, InsideAClientSet_EveryCallCarriesIt) {
    EXPECT_EQ(Code(quillet.BeginApply()), "0x00000000");
    const LONG set = Access::ClientSetId(quillet);
    ASSERT_NE(set, 0);
    Calls();
    CVLAN vlan = Wanted(30, L"Lab");
    EXPECT_EQ(Code(quillet.AddVLANToTeam(kT, vlan)), "0x00000000");
    EXPECT_EQ(Code(quillet.ModifyVLANProperty(vlan.m_wsVLANID, Wanted(31, L"Lab 2"))), "0x00000000");
    EXPECT_EQ(Code(quillet.RemoveVLAN(vlan.m_wsVLANID)), "0x00000000");
    unsigned changes = 0;
    for (const JournalEntry& call : Calls()) {
        if (call.operation == Operation::GetCallStatus) {
            continue; // on the call result, which takes no context
        }
        EXPECT_EQ(ClientSetOf(call), set) << Describe(call);
        EXPECT_EQ(call.note, L"");
        changes += call.operation != Operation::GetObject ? 1u : 0u;
    }
    EXPECT_EQ(changes, 3u);
    bool followup = true;
    EXPECT_EQ(Code(quillet.ApplyDone(followup)), "0x00000000");
    EXPECT_FALSE(followup);
    Calls();
    EXPECT_EQ(Code(quillet.RemoveVLAN(kV1)), "0x00000000");
    const std::vector<JournalEntry> outside = Calls();
    ASSERT_EQ(outside.size(), 1u);
    EXPECT_EQ(ClientSetOf(outside[0]), 0);
    EXPECT_EQ(outside[0].note, L"outside a client set");
}

TEST_F(VlanChangesTest, FollowUp_IsAskedForWhereTheMachineSaysSo) {
    UseText(std::string(kVlanMachine) +
            "instance of QuilletSimulator_FollowUp { ClassName = \"Zorel_VLAN\"; };");
    Connect();
    const auto within = [this](const std::function<HRESULT()>& change) {
        bool followup = false;
        EXPECT_EQ(Code(quillet.BeginApply()), "0x00000000");
        change();
        EXPECT_EQ(Code(quillet.ApplyDone(followup)), "0x00000000");
        return followup;
    };
    CVLAN vlan = Wanted(30, L"Lab");
    EXPECT_TRUE(within([&] { return quillet.AddVLANToTeam(kT, vlan); }));
    EXPECT_TRUE(within([&] { return quillet.ModifyVLANProperty(vlan.m_wsVLANID, Wanted(31, L"Lab")); }));
    EXPECT_TRUE(within([&] { return quillet.RemoveVLAN(vlan.m_wsVLANID); }));
    EXPECT_FALSE(within([&] { return quillet.RemoveVLAN(vlan.m_wsVLANID); }))
        << "what is refused changes nothing";
    EXPECT_FALSE(within([&] { return quillet.AddVLANToAdapter(kM, vlan); }));
}

TEST_F(VlanChangesTest, ASavedMachine_HasTheNewVlans) {
    CVLAN vlan = Wanted(30, L"B\u00fcro \u6771\u4eac \"1\"");
    EXPECT_EQ(Code(quillet.AddVLANToTeam(kT, vlan)), "0x00000000");
    const std::string saved = machine->Save();
    UseText(saved);
    Connect();
    CVLAN again;
    EXPECT_EQ(Code(quillet.GetVLANInfo(vlan.m_wsVLANID, again)), "0x00000000");
    EXPECT_EQ(again.m_wsVLANName, vlan.m_wsVLANName);
    EXPECT_EQ(again.m_lVLANNumber, 30);
    EXPECT_EQ(machine->Save(), saved);
}

TEST_F(VlanChangesTest, OnAStrictMachine_ChangesNeedAClientSet) {
    MachineOptions strict = Options();
    strict.strict = true;
    UseText(kVlanMachine, strict);
    Connect();
    CVLAN vlan = Wanted(30, L"Lab");
    EXPECT_EQ(Code(quillet.AddVLANToTeam(kT, vlan)), "0x80041003");
    EXPECT_EQ(Code(quillet.ModifyVLANProperty(kV1, Wanted(31, L"Lab"))), "0x80041003");
    EXPECT_EQ(Code(quillet.RemoveVLAN(kV1)), "0x80041003");
    EXPECT_EQ(Code(quillet.BeginApply()), "0x00000000");
    EXPECT_EQ(Code(quillet.AddVLANToTeam(kT, vlan)), "0x00000000");
    EXPECT_EQ(Code(quillet.ModifyVLANProperty(kV1, Wanted(31, L"Lab"))), "0x00000000");
    EXPECT_EQ(Code(quillet.RemoveVLAN(kV1)), "0x00000000");
}

TEST_F(VlanChangesTest, EachCallFailing_ReturnsItsCode) {
    LONG number = 100;
    FailEachProviderCall([&] {
        ++number;
        CVLAN vlan = Wanted(number, std::to_wstring(number));
        return quillet.AddVLANToTeam(kT, vlan);
    });
    FailEachProviderCall([&] { return quillet.ModifyVLANProperty(kV1, Wanted(++number, L"Lab")); });
    Fail(Operation::DeleteInstance, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.RemoveVLAN(kV1)), "0x80041003");
}

TEST_F(VlanChangesTest, EmptyIdentifier_IsRefusedWithoutACall) {
    EXPECT_EQ(Code(quillet.ModifyVLANProperty(L"", CVLAN())), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::ModifyVLANProperty", "(wsVLANID.empty())",
                                      "Exiting CQuillet::ModifyVLANProperty"));
    EXPECT_EQ(Code(quillet.RemoveVLAN(L"")), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::RemoveVLAN", "(wsVLANID.empty())",
                                      "Exiting CQuillet::RemoveVLAN"));
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_F(VlanChangesTest, WithoutConnection_Fails) {
    quillet.UninitQuillet();
    CVLAN vlan = Wanted(30, L"Lab");
    const std::function<HRESULT()> operations[] = {
        [&] { return quillet.AddVLANToAdapter(kA, vlan); }, [&] { return quillet.AddVLANToTeam(kT, vlan); },
        [&] { return quillet.ModifyVLANProperty(kV1, vlan); }, [&] { return quillet.RemoveVLAN(kV1); }};
    for (const auto& operation : operations) {
        Traced();
        EXPECT_EQ(Code(operation()), "0x80041001");
        EXPECT_THAT(Traced(), Contains("((pIWbemService == NULL) || (pIWbemContext == NULL))"));
    }
}

} // namespace
