// A small machine with a team, and what tests of teams do with it again and again.
#pragma once

#include "ProviderTest.h"

#include <initializer_list>

/// A, B and C: gigabit server adapters that can do everything. D: 10 gigabit. E: a desktop adapter of 100
/// megabit that supports few modes and no VLANs. The team T has the members A (primary) and B (secondary).
class TeamTest : public ProviderTest {
  protected:
    static const char* const MACHINE;

    TeamTest() : ProviderTest(MACHINE) {}
    void SetUp() override { Connect(); }

    static std::wstring Path(const wchar_t* className, const wchar_t* key, const wchar_t* id) {
        return std::wstring(LR"(\\TESTHOST\ROOT\MarloLUM2:)") + className + L"." + key + L"=\"" + id + L"\"";
    }
    static std::wstring Adapter(const wchar_t* id) {
        return Path(L"Zorel_PhysicalEthernetAdapter", L"DeviceID", id);
    }
    static std::wstring Team(const wchar_t* id) { return Path(L"Zorel_TeamOfAdapters", L"Name", id); }
    /// The path of a membership as the simulator writes it.
    static std::wstring Membership(const wchar_t* team, const wchar_t* adapter);

    static CAdapters Adapters(std::initializer_list<std::wstring> ids) {
        CAdapters adapters;
        for (const std::wstring& id : ids) {
            adapters.m_vecItems.push_back(new CAdapter);
            adapters.m_vecItems.back()->m_wsAdapterID = id;
        }
        return adapters;
    }
    static CTeamedAdapters Members(std::initializer_list<std::wstring> ids) {
        CTeamedAdapters members;
        for (const std::wstring& id : ids) {
            members.m_vecItems.push_back(new CTeamedAdapter);
            members.m_vecItems.back()->m_wsAdapterID = id;
        }
        return members;
    }

    /// Changes a property of an instance behind the provider's back.
    void Set(const std::wstring& path, const wchar_t* property, quillet::simulator::Value value);
    void SetNumber(const std::wstring& path, const wchar_t* property, long long number) {
        Set(path, property, quillet::simulator::Value::Signed(number));
    }
    void SetText(const std::wstring& path, const wchar_t* property, const wchar_t* text) {
        Set(path, property, quillet::simulator::Value::Text(text));
    }
    void SetNull(const std::wstring& path, const wchar_t* property) { Set(path, property, {}); }

    /// Whether the machine has an instance.
    bool Exists(const std::wstring& path) { return machine->Store().FindInstance(path) != nullptr; }
    /// The value of an integer property.
    long long Number(const std::wstring& path, const wchar_t* property);
    std::string Text(const std::wstring& path, const wchar_t* property);

    /// The lines that are left when those that every operation has many of are taken out: of reading the
    /// thread's interfaces, of each number read, of switching to partial data.
    std::vector<std::string> Steps();
    /// The calls that change or ask something: methods, writes and removals, with their in-parameters or the
    /// properties put as "name:VARIANT type=value", flags where there are any, and the client set.
    std::vector<std::string> Changes();

    const std::wstring A = Adapter(L"{A}");
    const std::wstring B = Adapter(L"{B}");
    const std::wstring C = Adapter(L"{C}");
    const std::wstring D = Adapter(L"{D}");
    const std::wstring E = Adapter(L"{E}");
    const std::wstring T = Team(L"{T}");
};
