// VLANs of a simulated machine, as any client of the provider sees them.
#include "ComFixture.h"

#include <atomic>
#include <thread>

using ATL::CComPtr;

namespace {

constexpr const char* kVlanMachine = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; Caption = "Alpha"; };
    instance of Zorel_PhysicalEthernetAdapter as $M { DeviceID = "{M}"; Caption = "Member"; };
    instance of Zorel_TeamOfAdapters as $T { Name = "{T}"; Caption = "Team"; };
    instance of Zorel_TeamedMemberAdapter { GroupComponent = $T; PartComponent = $M; };
    instance of Zorel_802dot1QVLANService { Name = "{A}"; };
    instance of Zorel_802dot1QVLANService { Name = "{M}"; };
    instance of Zorel_802dot1QVLANService { Name = "{T}"; };
    instance of Zorel_802dot1QVLANService { Name = "{X}"; };)";

class Vlans : public ComTest {
  protected:
    void SetUp() override {
        Use(kVlanMachine);
        Connect();
    }

    /// Asks a parent's service for a VLAN.
    std::string Create(const wchar_t* parent, const _variant_t& number, const _variant_t& name) {
        const auto in = InParameters(L"Zorel_802dot1QVLANService", L"CreateVLAN");
        EXPECT_EQ(Put(in, L"VLANNumber", number), S_OK);
        EXPECT_EQ(Put(in, L"Name", name), S_OK);
        const std::wstring service = L"Zorel_802dot1QVLANService.Name=\"" + std::wstring(parent) + L"\"";
        out.Release();
        return Code(services->ExecMethod(_bstr_t(service.c_str()).GetBSTR(), _bstr_t(L"CreateVLAN").GetBSTR(),
                                         0, nullptr, in, &out, nullptr));
    }
    std::string Create(const wchar_t* parent, LONG number, const wchar_t* name) {
        return Create(parent, I4(number), _variant_t(name));
    }
    /// The path of the VLAN that was made last.
    std::wstring NewPath() {
        const auto path = Get(out, L"VLANPath");
        return V_VT(&path) == VT_BSTR ? std::wstring(V_BSTR(&path)) : std::wstring();
    }
    std::string Write(const std::wstring& path, const wchar_t* property, const _variant_t& value,
                      LONG flags = 0) {
        const auto vlan = Object(path.c_str());
        EXPECT_EQ(Put(vlan, property, value), S_OK);
        return Code(services->PutInstance(vlan, flags, nullptr, nullptr));
    }
    std::string Delete(const std::wstring& path) {
        return Code(services->DeleteInstance(_bstr_t(path.c_str()).GetBSTR(), 0, nullptr, nullptr));
    }
    std::size_t Count(const wchar_t* className) { return machine->Store().Instances(className).size(); }

    CComPtr<IWbemClassObject> out;
};

TEST_F(Vlans, ServiceMakesAVlanUnderItsParent) {
    EXPECT_EQ(Create(L"{A}", 100, L"Lab"), "0x00000000");
    const auto returned = Get(out, L"ReturnValue");
    EXPECT_EQ(V_I4(&returned), 0);
    const auto path = NewPath();
    EXPECT_TRUE(path.starts_with(LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_VLAN.Name="{)")) << Narrow(path);
    const auto vlan = machine->Store().FindInstance(path);
    ASSERT_NE(vlan, nullptr);
    EXPECT_EQ(vlan->Text(L"ParentID"), L"{A}");
    EXPECT_EQ(vlan->Text(L"VLANName"), L"Lab");
    EXPECT_EQ(vlan->Text(L"Caption"), L"Alpha - VLAN : Lab");
    EXPECT_EQ(vlan->Number(L"VLANNumber"), 100);
    EXPECT_EQ(vlan->Number(L"StatusInfo"), 3);
    EXPECT_EQ(vlan->Text(L"Name").size(), 38u) << Narrow(vlan->Text(L"Name"));
    EXPECT_EQ(Create(L"{T}", 100, L"Lab"), "0x00000000") << "another parent";
    EXPECT_EQ(machine->Store().FindInstance(NewPath())->Text(L"Caption"), L"Team - VLAN : Lab");
    EXPECT_NE(NewPath(), path);
    EXPECT_EQ(Create(L"{X}", 1, L"Lab"), "0x00000000") << "a parent that nothing is known of";
    EXPECT_EQ(machine->Store().FindInstance(NewPath())->Text(L"Caption"), L"VLAN : Lab");
}

TEST_F(Vlans, NumbersAndNamesAreChecked) {
    EXPECT_EQ(Create(L"{A}", -1, L"Lab"), "0x8004102B");
    EXPECT_EQ(Create(L"{A}", 4095, L"Lab"), "0x8004102B");
    EXPECT_EQ(Create(L"{A}", 0, L"Untagged"), "0x00000000");
    EXPECT_EQ(Create(L"{A}", 4094, L"Lab"), "0x00000000");
    EXPECT_EQ(Create(L"{A}", 4094, L"Other"), "0x80041019");
    EXPECT_EQ(Create(L"{A}", 5, L"lAB"), "0x80041019");
    EXPECT_EQ(Create(L"{A}", 5, L""), "0x80041008");
    _variant_t null;
    V_VT(&null) = VT_NULL;
    EXPECT_EQ(Create(L"{A}", null, _variant_t(L"Lab")), "0x8004102B");
    EXPECT_EQ(Create(L"{A}", I4(5), null), "0x80041008");
    EXPECT_EQ(Count(L"Zorel_VLAN"), 2u);
}

TEST_F(Vlans, AParentCarries64) {
    for (LONG number = 1; number <= 64; ++number) {
        ASSERT_EQ(Create(L"{A}", number, std::to_wstring(number).c_str()), "0x00000000");
    }
    EXPECT_EQ(Create(L"{A}", 65, L"65"), "0x8004106C");
    EXPECT_EQ(Create(L"{T}", 65, L"65"), "0x00000000") << "another parent has its own";
    ASSERT_EQ(Create(L"{A}", 64, L"64"), "0x8004106C");
    const auto one = machine->Store().Instances(L"Zorel_VLAN").front();
    EXPECT_EQ(Write(machine->Store().FullPath(*one), L"VLANName", L"renamed"), "0x00000000")
        << "a change adds none";
    EXPECT_EQ(Delete(machine->Store().FullPath(*one)), "0x00000000");
    EXPECT_EQ(Create(L"{A}", 65, L"65"), "0x00000000");
}

TEST_F(Vlans, ATeamMembersServiceRefuses) {
    EXPECT_EQ(Create(L"{M}", 5, L"Lab"), "0x80041016");
    EXPECT_EQ(
        Delete(machine->Store().FullPath(*machine->Store().Instances(L"Zorel_TeamedMemberAdapter").front())),
        "0x00000000");
    EXPECT_EQ(Create(L"{M}", 5, L"Lab"), "0x00000000") << "it has left the team";
}

TEST_F(Vlans, TheClassHasNoParent) {
    const auto in = InParameters(L"Zorel_802dot1QVLANService", L"CreateVLAN");
    EXPECT_EQ(Put(in, L"VLANNumber", I4(5)), S_OK);
    EXPECT_EQ(Put(in, L"Name", L"Lab"), S_OK);
    EXPECT_EQ(Code(services->ExecMethod(_bstr_t(L"Zorel_802dot1QVLANService").GetBSTR(),
                                        _bstr_t(L"CreateVLAN").GetBSTR(), 0, nullptr, in, &out, nullptr)),
              "0x8004102F");
}

TEST_F(Vlans, SettingsComeAndGoWithTheVlan) {
    EXPECT_EQ(Create(L"{A}", 5, L"Lab"), "0x00000000");
    const auto tagged = NewPath();
    EXPECT_EQ(Count(L"Zorel_VLANSetting"), 6u);
    for (const auto& setting : machine->Store().Instances(L"Zorel_VLANSetting")) {
        EXPECT_EQ(setting->Text(L"ParentId"), machine->Store().FindInstance(tagged)->Text(L"Name"));
        EXPECT_EQ(setting->Text(L"ParentType"), L"VLAN");
    }
    EXPECT_EQ(Create(L"{A}", 0, L"Untagged"), "0x00000000");
    EXPECT_EQ(Count(L"Zorel_VLANSetting"), 11u) << "the untagged VLAN has no priority";
    EXPECT_EQ(Delete(tagged), "0x00000000");
    EXPECT_EQ(Count(L"Zorel_VLANSetting"), 5u);
    EXPECT_EQ(Count(L"Zorel_VLAN"), 1u);
    EXPECT_EQ(Delete(tagged), "0x80041002");
    EXPECT_EQ(Create(L"{A}", 5, L"Lab"), "0x00000000");
    EXPECT_EQ(NewPath(), tagged) << "the same change makes the same machine";
}

TEST_F(Vlans, NumberAndNameCanBeWrittenAndNothingElse) {
    ASSERT_EQ(Create(L"{A}", 5, L"Lab"), "0x00000000");
    const auto path = NewPath();
    ASSERT_EQ(Create(L"{A}", 6, L"Other"), "0x00000000");
    EXPECT_EQ(Write(path, L"VLANName", L"LAB"), "0x00000000") << "its own name in other letters";
    EXPECT_EQ(machine->Store().FindInstance(path)->Text(L"Caption"), L"Alpha - VLAN : LAB");
    EXPECT_EQ(Write(path, L"VLANNumber", I4(7)), "0x00000000");
    EXPECT_EQ(Write(path, L"VLANNumber", I4(7)), "0x00000000") << "its own number";
    EXPECT_EQ(Write(path, L"VLANNumber", I4(6)), "0x80041019");
    EXPECT_EQ(Write(path, L"VLANNumber", I4(4095)), "0x8004102B");
    EXPECT_EQ(Write(path, L"VLANName", L"OTHER"), "0x80041019");
    EXPECT_EQ(Write(path, L"VLANName", L""), "0x80041008");
    EXPECT_EQ(Write(path, L"ParentID", L"{T}"), "0x80041023");
    EXPECT_EQ(Write(path, L"StatusInfo", I4(4)), "0x80041023");
    EXPECT_EQ(Write(path, L"VLANName", L"Lab", WBEM_FLAG_CREATE_ONLY), "0x80041019");
    const auto vlan = machine->Store().FindInstance(path);
    EXPECT_EQ(vlan->Number(L"VLANNumber"), 7);
    EXPECT_EQ(vlan->Text(L"VLANName"), L"LAB");
    EXPECT_EQ(vlan->Text(L"ParentID"), L"{A}");
}

TEST_F(Vlans, OnlyAServiceMakesThem) {
    CComPtr<IWbemClassObject> vlan;
    ASSERT_EQ(Object(L"Zorel_VLAN")->SpawnInstance(0, &vlan), S_OK);
    EXPECT_EQ(Put(vlan, L"Name", L"{V}"), S_OK);
    EXPECT_EQ(Put(vlan, L"ParentID", L"{A}"), S_OK);
    EXPECT_EQ(Put(vlan, L"VLANName", L"Lab"), S_OK);
    EXPECT_EQ(Put(vlan, L"VLANNumber", I4(5)), S_OK);
    EXPECT_EQ(Code(services->PutInstance(vlan, 0, nullptr, nullptr)), "0x80041024");
    EXPECT_EQ(Code(services->PutInstance(vlan, WBEM_FLAG_UPDATE_ONLY, nullptr, nullptr)), "0x80041002");
    EXPECT_EQ(Count(L"Zorel_VLAN"), 0u);
}

TEST_F(Vlans, FollowUpsAreWhatTheMachineSays) {
    const auto followUp = [this](LONG set) {
        const auto in = InParameters(L"Zorel_NetService", L"Apply");
        EXPECT_EQ(Put(in, L"ClientSetHandle", I4(set)), S_OK);
        CComPtr<IWbemClassObject> answer;
        EXPECT_EQ(Code(services->ExecMethod(_bstr_t(L"Zorel_NetService.Name=\"ZorelNetService\"").GetBSTR(),
                                            _bstr_t(L"Apply").GetBSTR(), 0, nullptr, in, &answer, nullptr)),
                  "0x00000000");
        const auto action = Get(answer, L"FollowupAction");
        return V_I4(&action);
    };
    ASSERT_EQ(Create(L"{A}", 5, L"Lab"), "0x00000000");
    EXPECT_EQ(followUp(Begin()), 0) << "nothing is said of VLANs";
    Use(std::string(kVlanMachine) + R"(
        instance of QuilletSimulator_FollowUp { ClassName = "Zorel_VLAN"; Action = 2; };
        instance of QuilletSimulator_FollowUp { ClassName = "Test_Base"; };)");
    Connect();
    EXPECT_EQ(Create(L"{A}", 5, L"Lab"), "0x00000000");
    EXPECT_EQ(followUp(Begin()), 2);
    EXPECT_EQ(followUp(Begin()), 0) << "once";
    EXPECT_EQ(Write(NewPath(), L"VLANName", L"Other"), "0x00000000");
    EXPECT_EQ(followUp(Begin()), 2);
    EXPECT_EQ(Create(L"{A}", 5, L"Lab"), "0x80041019");
    EXPECT_EQ(followUp(Begin()), 0) << "what is refused changes nothing";
    EXPECT_EQ(Delete(L"Test_All=\"two\""), "0x00000000");
    EXPECT_EQ(followUp(Begin()), 1) << "a class below the one that is named";
}

TEST_F(Vlans, AreNeverTwoOfANumberHoweverManyAsk) {
    // Each thread asks the machine for the same numbers.
    constexpr int kThreads = 4;
    std::vector<std::thread> threads;
    std::atomic<int> made{0};
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([this, &made, thread] {
            ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED)));
            for (LONG number = 1; number <= 20; ++number) {
                const std::wstring name = std::to_wstring(thread) + L"/" + std::to_wstring(number);
                CComPtr<IWbemClassObject> in = InParameters(L"Zorel_802dot1QVLANService", L"CreateVLAN");
                _variant_t value = I4(number);
                _variant_t text(name.c_str());
                EXPECT_EQ(in->Put(L"VLANNumber", 0, &value, 0), S_OK);
                EXPECT_EQ(in->Put(L"Name", 0, &text, 0), S_OK);
                made += SUCCEEDED(services->ExecMethod(
                            _bstr_t(L"Zorel_802dot1QVLANService.Name=\"{A}\"").GetBSTR(),
                            _bstr_t(L"CreateVLAN").GetBSTR(), 0, nullptr, in, nullptr, nullptr))
                            ? 1
                            : 0;
            }
            CoUninitialize();
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(made, 20);
    EXPECT_EQ(Count(L"Zorel_VLAN"), 20u);
}

} // namespace
