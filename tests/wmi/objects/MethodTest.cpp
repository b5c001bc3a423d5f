// ExecMethod: paths, parameters, the network service's methods, and client sets.
#include "ComFixture.h"

using ATL::CComPtr;

namespace {

constexpr const wchar_t* kNetService = L"Zorel_NetService.Name=\"ZorelNetService\"";

class Methods : public ComTest {
  protected:
    std::string Run(const wchar_t* path, const wchar_t* method, IWbemClassObject* in = nullptr,
                    IWbemContext* context = nullptr) {
        return ExecMethod(path, method, in, out, context);
    }
    std::string Apply(LONG handle) {
        const auto in = InParameters(L"Zorel_NetService", L"Apply");
        EXPECT_EQ(Put(in, L"ClientSetHandle", I4(handle)), S_OK);
        return Run(kNetService, L"Apply", in);
    }
    CComPtr<IWbemContext> ContextOf(LONG set) {
        auto context = Context();
        _variant_t value = I4(set);
        EXPECT_EQ(context->SetValue(L"ClientSetId", 0, &value), S_OK);
        return context;
    }
    std::string Change(IWbemContext* context) {
        const auto one = Object(kAll);
        EXPECT_EQ(Put(one, L"Caption", L"changed"), S_OK);
        return Code(services->PutInstance(one, 0, context, nullptr));
    }

    CComPtr<IWbemClassObject> out;
};

TEST_F(Methods, PathsAndNamesAreChecked) {
    EXPECT_EQ(Run(L"Test_All=\"", L"Run"), "0x8004103A");
    EXPECT_EQ(Run(L"None=1", L"Run"), "0x80041010");
    EXPECT_EQ(Run(L"Test_All=\"three\"", L"Run"), "0x80041002");
    EXPECT_EQ(Run(kAll, L"Walk"), "0x8004102E");
    EXPECT_EQ(
        Code(services->ExecMethod(nullptr, _bstr_t(L"Run").GetBSTR(), 0, nullptr, nullptr, nullptr, nullptr)),
        "0x80041008");
    EXPECT_EQ(
        Code(services->ExecMethod(_bstr_t(kAll).GetBSTR(), nullptr, 0, nullptr, nullptr, nullptr, nullptr)),
        "0x80041008");
    EXPECT_EQ(Code(services->ExecMethod(_bstr_t(kAll).GetBSTR(), _bstr_t(L"Run").GetBSTR(), 1, nullptr,
                                        nullptr, nullptr, nullptr)),
              "0x80041008");
    EXPECT_EQ(Code(services->ExecMethod(_bstr_t(kAll).GetBSTR(), _bstr_t(L"Run").GetBSTR(),
                                        WBEM_FLAG_RETURN_IMMEDIATELY, nullptr, nullptr, nullptr, nullptr)),
              "0x80041008");
}

TEST_F(Methods, WithoutBehaviourAMethodIsNotSupported) {
    EXPECT_EQ(Run(kAll, L"Run", InParameters(L"Test_All", L"Run")), "0x8004100C");
    EXPECT_EQ(Run(kAll, L"Hello"), "0x8004100C");
    EXPECT_EQ(Run(L"Test_All", L"Hello"), "0x8004100C");
    EXPECT_EQ(out.p, nullptr);
}

TEST_F(Methods, AMachineMayDeclareMethodsButNotWhatTheyDo) {
    const std::pair<const wchar_t*, const wchar_t*> keys[] = {{L"Zorel_NetService", L"Name"},
                                                              {L"Zorel_PhysicalEthernetAdapter", L"DeviceID"},
                                                              {L"Zorel_TeamOfAdapters", L"Name"},
                                                              {L"Zorel_VLAN", L"Name"},
                                                              {L"Zorel_802dot1QVLANService", L"Name"},
                                                              {L"Zorel_BootAgent", L"Name"},
                                                              {L"Zorel_DiagTest", L"Name"}};
    std::string mof;
    for (const auto& [name, key] : keys) {
        const auto own = "Own_" + Narrow(name);
        mof += "class " + own + " : " + Narrow(name) + " { uint32 Dance(); }; instance of " + own + " { " +
               Narrow(key) + " = \"x\"; };";
    }
    Use(mof);
    Connect();
    for (const auto& [name, key] : keys) {
        SCOPED_TRACE(Narrow(name));
        const auto path = L"Own_" + std::wstring(name);
        EXPECT_EQ(Run((path + L'.' + key + L"=\"x\"").c_str(), L"Dance"), "0x8004100C");
        EXPECT_EQ(Run(path.c_str(), L"Dance"), "0x8004100C");
    }
}

TEST_F(Methods, OneThatAMachineDeclaresWithoutOutParametersWorksAndTellsNothing) {
    Use("class Own_Service : Zorel_NetService { void BeginApply(); };"
        "instance of Own_Service { Name = \"own\"; };");
    Connect();
    EXPECT_EQ(Run(L"Own_Service.Name=\"own\"", L"BeginApply"), "0x00000000");
    EXPECT_EQ(out.p, nullptr);
    EXPECT_NE(machine->OpenClientSet(), 0);
}

TEST_F(Methods, OnlyItsOwnParametersGoIn) {
    EXPECT_EQ(Run(kAll, L"Run", Object(kAll)), "0x8004102F");
    CComPtr<IWbemClassObject> signature;
    ASSERT_EQ(Object(L"Test_All")->GetMethod(L"Run", 0, &signature, nullptr), S_OK);
    EXPECT_EQ(Run(kAll, L"Run", signature), "0x8004102F");
    EXPECT_EQ(Run(kAll, L"Run", InParameters(L"Zorel_NetService", L"Apply")), "0x8004102F");
    EXPECT_EQ(Run(kAll, L"Tell", InParameters(L"Test_All", L"Run")), "0x8004102F");
}

TEST_F(Methods, BeginApplyHandsOutFreshHandles) {
    EXPECT_EQ(machine->OpenClientSet(), 0);
    const LONG first = Begin();
    EXPECT_NE(first, 0);
    EXPECT_EQ(machine->OpenClientSet(), first);
    const LONG second = Begin();
    EXPECT_NE(second, first);
    EXPECT_EQ(Apply(first), "0x00000000");
    EXPECT_EQ(machine->OpenClientSet(), second);
    EXPECT_EQ(Apply(second), "0x00000000");
    EXPECT_EQ(machine->OpenClientSet(), 0);
}

TEST_F(Methods, BeginApplyAnswersOnTheClassToo) {
    ASSERT_EQ(Run(L"Zorel_NetService", L"BeginApply"), "0x00000000");
    EXPECT_EQ(Get(out, L"ReturnValue"), I4(0));
    EXPECT_EQ(Get(out, L"__CLASS"), _variant_t(L"__PARAMETERS"));
    EXPECT_EQ(Get(out, L"ClientSetHandle"), I4(machine->OpenClientSet()));
}

TEST_F(Methods, ApplyReportsTheFollowUpOnce) {
    const LONG handle = Begin();
    ASSERT_EQ(Apply(handle), "0x00000000");
    EXPECT_EQ(Get(out, L"FollowupAction"), I4(0));
    machine->RequireFollowup(2);
    machine->RequireFollowup(1);
    ASSERT_EQ(Apply(Begin()), "0x00000000");
    EXPECT_EQ(Get(out, L"FollowupAction"), I4(2));
    EXPECT_EQ(Get(out, L"ReturnValue"), I4(0));
    ASSERT_EQ(Apply(Begin()), "0x00000000");
    EXPECT_EQ(Get(out, L"FollowupAction"), I4(0));
}

TEST_F(Methods, AHandleThatIsNotOpenIsNoted) {
    EXPECT_EQ(Apply(77), "0x00000000");
    EXPECT_EQ(machine->Calls().All().back().note, L"client set 77 is not open");
    const LONG handle = Begin();
    EXPECT_EQ(Apply(handle), "0x00000000");
    EXPECT_EQ(machine->Calls().All().back().note, L"");
    EXPECT_EQ(Apply(handle), "0x00000000");
    EXPECT_NE(machine->Calls().All().back().note, L"");
}

TEST_F(Methods, AStrictMachineRefusesAHandleThatIsNotOpen) {
    Use("instance of Zorel_NetService { Name = \"ZorelNetService\"; };", Options(true));
    Connect();
    EXPECT_EQ(Apply(77), "0x80041008");
    const LONG handle = Begin();
    EXPECT_EQ(Apply(handle), "0x00000000");
    EXPECT_EQ(Apply(handle), "0x80041008");
    EXPECT_EQ(out.p, nullptr);
}

TEST_F(Methods, AChangeOutsideAClientSetIsNoted) {
    EXPECT_EQ(Change(nullptr), "0x00000000");
    EXPECT_EQ(
        Narrow(machine->Calls().All().back().Line()),
        "PutInstance \\\\TESTHOST\\ROOT\\MarloLUM2:Test_All.Name=\"one\"(Caption=\"changed\") -> 0x00000000 "
        "(outside a client set)");
    EXPECT_EQ(Code(services->DeleteInstance(_bstr_t(L"Test_Lone=1").GetBSTR(), 0, nullptr, nullptr)),
              "0x00000000");
    EXPECT_EQ(machine->Calls().All().back().note, L"outside a client set");
    const LONG handle = Begin();
    EXPECT_EQ(Change(ContextOf(handle)), "0x00000000");
    EXPECT_EQ(machine->Calls().All().back().note, L"");
    EXPECT_EQ(Change(ContextOf(0)), "0x00000000");
    EXPECT_NE(machine->Calls().All().back().note, L"");
}

TEST_F(Methods, AStrictMachineRefusesAChangeOutsideAClientSet) {
    Use("instance of Zorel_NetService { Name = \"ZorelNetService\"; };", Options(true));
    Connect();
    EXPECT_EQ(Change(nullptr), "0x80041003");
    EXPECT_EQ(Change(ContextOf(5)), "0x80041003");
    EXPECT_EQ(Code(services->DeleteInstance(_bstr_t(L"Test_Lone=1").GetBSTR(), 0, nullptr, nullptr)),
              "0x80041003");
    EXPECT_EQ(machine->Store().FindInstance(kAll)->Text(L"Caption"), L"First");
    const LONG handle = Begin();
    EXPECT_EQ(Change(ContextOf(handle)), "0x00000000");
    EXPECT_EQ(machine->Store().FindInstance(kAll)->Text(L"Caption"), L"changed");
    ASSERT_EQ(Apply(handle), "0x00000000");
    EXPECT_EQ(Change(ContextOf(handle)), "0x80041003");
}

TEST_F(Methods, ARefusalOfASemisynchronousChangeIsItsStatus) {
    Use("", Options(true));
    Connect();
    CComPtr<IWbemCallResult> result;
    ASSERT_EQ(Code(services->PutInstance(Object(kAll), 0x20010, nullptr, &result)), "0x00000000");
    LONG status = 0;
    ASSERT_EQ(result->GetCallStatus(static_cast<LONG>(WBEM_INFINITE), &status), S_OK);
    EXPECT_EQ(Code(status), "0x80041003");
    EXPECT_EQ(machine->Calls().All().back().note, L"status 0x80041003");
}

TEST_F(Methods, WarningsAreThoseOfTheService) {
    ASSERT_EQ(Run(kNetService, L"GetKavlorWarnings"), "0x00000000");
    EXPECT_EQ(Get(out, L"ReturnValue"), I4(0));
    EXPECT_EQ(Get(out, L"Warnings"), _variant_t(L"9007199254740993"));
    ASSERT_EQ(Run(L"Zorel_NetService", L"getkavlorwarnings"), "0x00000000");
    EXPECT_EQ(Get(out, L"Warnings"), _variant_t(L"9007199254740993"));
    auto service = *machine->Store().FindInstance(kNetService);
    service.Set(L"Warnings", Value());
    ASSERT_EQ(machine->Store().PutInstance(service), S_OK);
    ASSERT_EQ(Run(kNetService, L"GetKavlorWarnings"), "0x00000000");
    const auto none = Get(out, L"Warnings");
    EXPECT_EQ(V_VT(&none), VT_NULL);
}

TEST_F(Methods, OutParametersComeLaterWhenAskedTo) {
    CComPtr<IWbemCallResult> result;
    ASSERT_EQ(Code(services->ExecMethod(_bstr_t(kNetService).GetBSTR(), _bstr_t(L"BeginApply").GetBSTR(),
                                        WBEM_FLAG_RETURN_IMMEDIATELY, nullptr, nullptr, &out, &result)),
              "0x00000000");
    EXPECT_EQ(out.p, nullptr);
    ASSERT_EQ(Code(result->GetResultObject(static_cast<LONG>(WBEM_INFINITE), &out)), "0x00000000");
    EXPECT_EQ(Get(out, L"ClientSetHandle"), I4(machine->OpenClientSet()));
}

TEST_F(Methods, TheClientMayLeaveTheOutParameters) {
    EXPECT_EQ(Code(services->ExecMethod(_bstr_t(kNetService).GetBSTR(), _bstr_t(L"BeginApply").GetBSTR(), 0,
                                        nullptr, nullptr, nullptr, nullptr)),
              "0x00000000");
}

TEST_F(Methods, CredentialsOfLinkSecurityStayUnlessTheyAreSaidToChange) {
    constexpr const wchar_t* kPort = L"Zorel_PhysicalEthernetAdapter.DeviceID=\"{A}\"";
    Use("instance of Zorel_PhysicalEthernetAdapter { DeviceID = \"{A}\"; };"
        "instance of Zorel_LinkSecConfiguration { DeviceID = \"{A}\"; strUsername = \"before\"; };");
    Connect();
    const auto set = [&](LONG method, bool changed) {
        const auto in = InParameters(L"Zorel_PhysicalEthernetAdapter", L"SetLinksecParams");
        EXPECT_EQ(Put(in, L"OuterEAPType", I4(method)), S_OK);
        EXPECT_EQ(Put(in, L"LinksecCredUsername", L"after"), S_OK);
        EXPECT_EQ(Put(in, L"bCredChanged", changed), S_OK);
        return Run(kPort, L"SetLinksecParams", in);
    };
    const auto user = [&] {
        return machine->Store()
            .FindInstance(L"Zorel_LinkSecConfiguration.DeviceID=\"{A}\"")
            ->Text(L"strUsername");
    };
    EXPECT_EQ(set(5, true), "0x8004102F") << "there are four methods";
    EXPECT_EQ(set(0, true), "0x8004102F");
    EXPECT_EQ(set(1, false), "0x00000000");
    EXPECT_EQ(user(), L"before");
    EXPECT_EQ(set(1, true), "0x00000000");
    EXPECT_EQ(user(), L"after");
}

} // namespace
