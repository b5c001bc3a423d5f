// Object identifiers into paths and out of them.
#include "EthernetAdapterMgrHelper.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using ATL::CComBSTR;
using Helper = CZorel_EthernetAdapterMgrHelper;
using Path = CLumWmiAutoParsedObjectPath;

constexpr wchar_t kId[] = L"{3F2504E0-4F89-11D3-9A0C-0305E82C3301}";
constexpr int kFull = 0;
constexpr int kRelative = 1;

std::wstring Prefix() {
    wchar_t name[256];
    DWORD length = 256;
    EXPECT_TRUE(GetComputerNameW(name, &length));
    return L"\\\\" + std::wstring(name, length) + L"\\ROOT\\MarloLUM2:";
}

/// One kind of path: how it is made, and which readers take it.
struct Kind {
    const char* name;
    std::wstring relative; ///< without the quoted value
    bool (*make)(int, const wchar_t*, CComBSTR&);
    bool objectId = false;
    bool team = false;
    bool vlan = false;
    bool bootAgent = false;
};

void PrintTo(const Kind& kind, std::ostream* stream) {
    *stream << kind.name;
}

const Kind kKinds[] = {
    {"PhysicalAdapter", L"Zorel_PhysicalEthernetAdapter.DeviceID=",
     [](int form, const wchar_t* id, CComBSTR& path) {
         return Helper::MakePathFromObjectId(form, id, path, Helper::PhysicalAdapter);
     },
     true},
    {"LogicalAdapter", L"Zorel_LogicalEthernetAdapter.DeviceID=",
     [](int form, const wchar_t* id, CComBSTR& path) {
         return Helper::MakePathFromObjectId(form, id, path, Helper::LogicalAdapter);
     },
     true},
    {"TeamByType", L"Zorel_TeamOfAdapters.Name=",
     [](int form, const wchar_t* id, CComBSTR& path) {
         return Helper::MakePathFromObjectId(form, id, path, Helper::TeamOfAdapters);
     },
     false, true},
    {"VlanByType", L"Zorel_VLAN.Name=",
     [](int form, const wchar_t* id, CComBSTR& path) {
         return Helper::MakePathFromObjectId(form, id, path, Helper::Vlan);
     },
     false, false, true},
    {"Team", L"Zorel_TeamOfAdapters.Name=", Helper::MakeTeamOfAdapPathFromObjectId, false, true},
    {"Vlan", L"Zorel_VLAN.Name=", Helper::MakePathFromVlanObjectId, false, false, true},
    {"VlanService", L"Zorel_802dot1QVLANService.Name=", Helper::MakeVlanServicePathFromParentObjectId},
    {"BootAgent", L"Zorel_BootAgent.Name=", Helper::MakePathFromBootAgentId, true, false, false, true},
};

class PathKindTest : public testing::TestWithParam<Kind> {
  protected:
    static std::wstring Text(const wchar_t* text) { return text == nullptr ? L"(null)" : text; }
    /// Whatever the readers take out of a path must be this, for those that take this kind.
    void ExpectRead(const std::wstring& text, const std::wstring& id) {
        const std::wstring none = L"(null)";
        Path path;
        ASSERT_EQ(path.Parse(text.c_str()), 0) << text;
        wchar_t* objectId = const_cast<wchar_t*>(L"untouched");
        EXPECT_EQ(Helper::GetObjectIdFromPath(&path, objectId), GetParam().objectId);
        EXPECT_EQ(Text(objectId), GetParam().objectId ? id : none);
        EXPECT_EQ(Text(Helper::GetObjectIdFromTeamOfAdapPath(0, &path)), GetParam().team ? id : none);
        EXPECT_EQ(Text(Helper::GetObjectIdFromTeamOfAdapPath(1, &path)), GetParam().team ? id : none);
        EXPECT_EQ(Text(Helper::GetVlanObjectIdFromPath(&path)), GetParam().vlan ? id : none);
        EXPECT_EQ(Text(Helper::GetBootAgentIdFromPath(&path)), GetParam().bootAgent ? id : none);
        EXPECT_EQ(Text(Helper::GetAdapterIdFromMemberAdapterPath(&path)), none);
    }
};

TEST_P(PathKindTest, FullForm_IsOnThisComputer) {
    CComBSTR path;
    EXPECT_TRUE(GetParam().make(kFull, kId, path));
    EXPECT_EQ(std::wstring(path), Prefix() + GetParam().relative + L'"' + kId + L'"');
    ExpectRead(path.m_str, kId);
}

TEST_P(PathKindTest, RelativeForm_HasNoComputer) {
    CComBSTR path;
    EXPECT_TRUE(GetParam().make(kRelative, kId, path));
    EXPECT_EQ(std::wstring(path), GetParam().relative + L'"' + kId + L'"');
    ExpectRead(path.m_str, kId);
}

TEST_P(PathKindTest, PathOfAnotherMachine_IsReadAsWell) {
    ExpectRead(L"\\\\LAB-7\\root\\custom:" + GetParam().relative + L'"' + kId + L'"', kId);
}

TEST_P(PathKindTest, EitherQuoteCharacter_IsRead) {
    ExpectRead(GetParam().relative + L'\'' + kId + L'\'', kId);
}

TEST_P(PathKindTest, NamesInAnotherCase_AreRead) {
    std::wstring text = GetParam().relative;
    for (wchar_t& character : text) {
        character = character >= L'a' && character <= L'z' ? static_cast<wchar_t>(character - 32) : character;
    }
    ExpectRead(text + L'"' + kId + L'"', kId);
}

TEST_P(PathKindTest, UnnamedKey_IsRead) {
    const std::wstring className = GetParam().relative.substr(0, GetParam().relative.find(L'.'));
    ExpectRead(className + L"=\"x\"", L"x");
}

TEST_P(PathKindTest, IdentifierWithQuotesAndBackslashes_SurvivesTheWay) {
    const std::wstring id = L"a\"b'c\\d\\\\e\"";
    CComBSTR path;
    EXPECT_TRUE(GetParam().make(kRelative, id.c_str(), path));
    EXPECT_EQ(std::wstring(path), GetParam().relative + LR"("a\"b'c\\d\\\\e\"")");
    ExpectRead(path.m_str, id);
}

TEST_P(PathKindTest, NoIdentifier_GivesTheEmptyText) {
    for (const wchar_t* id : {static_cast<const wchar_t*>(nullptr), L""}) {
        CComBSTR path(L"before");
        EXPECT_FALSE(GetParam().make(kFull, id, path));
        EXPECT_NE(path.m_str, nullptr);
        EXPECT_EQ(path.Length(), 0u);
    }
}

TEST_P(PathKindTest, KeyBesideTheIdentifyingOne_DoesNotMatter) {
    ExpectRead(GetParam().relative + L"\"x\",Other=\"y\"", L"x");
    const std::size_t dot = GetParam().relative.find(L'.') + 1;
    ExpectRead(GetParam().relative.substr(0, dot) + L"Other=\"y\"," + GetParam().relative.substr(dot) +
                   L"\"x\"",
               L"x");
}

TEST_P(PathKindTest, PathThatNamesNoInstanceOfIt_GivesNothing) {
    const std::wstring className = GetParam().relative.substr(0, GetParam().relative.find(L'.'));
    for (const std::wstring& text :
         {className, className + L"=@", className + L".Other=\"x\"", className + L".Name=\"\"",
          className + L".DeviceID=\"\"", className + L"2.Name=\"x\"",
          L"Other_" + GetParam().relative + L"\"x\""}) {
        Path path;
        ASSERT_EQ(path.Parse(text.c_str()), 0) << text;
        wchar_t* objectId = const_cast<wchar_t*>(L"untouched");
        EXPECT_FALSE(Helper::GetObjectIdFromPath(&path, objectId)) << text;
        EXPECT_EQ(objectId, nullptr);
        EXPECT_EQ(Helper::GetObjectIdFromTeamOfAdapPath(0, &path), nullptr) << text;
        EXPECT_EQ(Helper::GetVlanObjectIdFromPath(&path), nullptr) << text;
        EXPECT_EQ(Helper::GetBootAgentIdFromPath(&path), nullptr) << text;
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, PathKindTest, testing::ValuesIn(kKinds),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST(PathMakerTest, UnknownInstanceType_GivesTheEmptyText) {
    CComBSTR path;
    EXPECT_FALSE(
        Helper::MakePathFromObjectId(kFull, kId, path, static_cast<Helper::EthernetInstanceType>(99)));
    EXPECT_NE(path.m_str, nullptr);
    EXPECT_EQ(path.Length(), 0u);
}

TEST(PathMakerTest, InstanceTypes_HaveTheirNumbers) {
    EXPECT_EQ(Helper::PhysicalAdapter, 0);
    EXPECT_EQ(Helper::LogicalAdapter, 1);
}

TEST(PathReaderTest, NullAndUnparsedPaths_GiveNothing) {
    Path unparsed;
    Path failed;
    EXPECT_NE(failed.Parse(L"no path"), 0);
    for (Path* path : {static_cast<Path*>(nullptr), &unparsed, &failed}) {
        wchar_t* objectId = const_cast<wchar_t*>(L"untouched");
        EXPECT_FALSE(Helper::GetObjectIdFromPath(path, objectId));
        EXPECT_EQ(objectId, nullptr);
        EXPECT_EQ(Helper::GetObjectIdFromTeamOfAdapPath(0, path), nullptr);
        EXPECT_EQ(Helper::GetVlanObjectIdFromPath(path), nullptr);
        EXPECT_EQ(Helper::GetBootAgentIdFromPath(path), nullptr);
        EXPECT_EQ(Helper::GetAdapterIdFromMemberAdapterPath(path), nullptr);
    }
}

TEST(PathReaderTest, IscsiBootAgent_HasTheBootAgentsIdentifier) {
    Path path;
    ASSERT_EQ(path.Parse(L"Zorel_BootAgent_iSCSI_Adapters.Name=\"{1}\""), 0);
    EXPECT_STREQ(Helper::GetBootAgentIdFromPath(&path), L"{1}");
}

TEST(PathReaderTest, AdapterPath_ComesBackFromItsIdentifier) {
    const std::wstring text = Prefix() + L"Zorel_PhysicalEthernetAdapter.DeviceID=\"" + kId + L'"';
    Path path;
    ASSERT_EQ(path.Parse(text.c_str()), 0);
    wchar_t* objectId = nullptr;
    ASSERT_TRUE(Helper::GetObjectIdFromPath(&path, objectId));
    CComBSTR again;
    EXPECT_TRUE(Helper::MakePathFromObjectId(0, objectId, again, Helper::PhysicalAdapter));
    EXPECT_EQ(std::wstring(again), text);
}

TEST(PathReaderTest, Identifier_LivesAsLongAsItsPath) {
    Path path;
    ASSERT_EQ(path.Parse(L"Zorel_VLAN.Name='{1}'"), 0);
    wchar_t* const first = Helper::GetVlanObjectIdFromPath(&path);
    EXPECT_EQ(Helper::GetVlanObjectIdFromPath(&path), first);
    EXPECT_STREQ(first, L"{1}");
}

std::wstring Quoted(const std::wstring& path) {
    std::wstring text = L"\"";
    for (const wchar_t character : path) {
        if (character == L'"' || character == L'\\') {
            text += L'\\';
        }
        text += character;
    }
    return text + L'"';
}

TEST(MemberPathTest, AdapterIdentifier_IsInThePathWithinThePath) {
    const std::wstring team = Quoted(L"\\\\H\\ROOT\\MarloLUM2:Zorel_TeamOfAdapters.Name=\"{team}\"");
    const std::wstring part = Quoted(L"\\\\H\\ROOT\\MarloLUM2:Zorel_PhysicalEthernetAdapter.DeviceID=\"" +
                                     std::wstring(kId) + L'"');
    for (const std::wstring& keys : {L"GroupComponent=" + team + L",PartComponent=" + part,
                                     L"PartComponent=" + part + L",GroupComponent=" + team}) {
        Path path;
        ASSERT_EQ(path.Parse((L"\\\\H\\ROOT\\MarloLUM2:Zorel_TeamedMemberAdapter." + keys).c_str()), 0);
        EXPECT_STREQ(Helper::GetAdapterIdFromMemberAdapterPath(&path), kId);
        wchar_t* objectId = nullptr;
        EXPECT_FALSE(Helper::GetObjectIdFromPath(&path, objectId));
        EXPECT_EQ(Helper::GetObjectIdFromTeamOfAdapPath(0, &path), nullptr);
    }
}

TEST(MemberPathTest, OtherQuotesAndRelativeParts_AreReadAsWell) {
    Path path;
    ASSERT_EQ(
        path.Parse(
            L"Zorel_TeamedMemberAdapter.PartComponent='Zorel_PhysicalEthernetAdapter.DeviceID=\"{1}\"'"),
        0);
    EXPECT_STREQ(Helper::GetAdapterIdFromMemberAdapterPath(&path), L"{1}");
    ASSERT_EQ(
        path.Parse(
            L"Zorel_TeamedMemberAdapter.PartComponent=\"Zorel_PhysicalEthernetAdapter.DeviceID='{2}'\""),
        0);
    EXPECT_STREQ(Helper::GetAdapterIdFromMemberAdapterPath(&path), L"{2}");
}

TEST(MemberPathTest, PartThatIsNoPhysicalAdapter_GivesNothing) {
    for (const wchar_t* part :
         {L"", L"no path", L"Zorel_VLAN.Name='x'", L"Zorel_PhysicalEthernetAdapter",
          L"Zorel_TeamOfAdapters.Name='x'", L"Zorel_PhysicalEthernetAdapter.DeviceID=''",
          L"Zorel_PhysicalEthernetAdapter.Name='x'", L"Zorel_TeamedMemberAdapter.PartComponent='y'"}) {
        Path path;
        ASSERT_EQ(path.Parse((L"Zorel_TeamedMemberAdapter.PartComponent=" + Quoted(part)).c_str()), 0)
            << part;
        EXPECT_EQ(Helper::GetAdapterIdFromMemberAdapterPath(&path), nullptr) << part;
    }
}

TEST(MemberPathTest, AssociationWithoutPartOrOfAnotherClass_GivesNothing) {
    for (const wchar_t* text : {L"Zorel_TeamedMemberAdapter", L"Zorel_TeamedMemberAdapter.GroupComponent='x'",
                                L"Zorel_Other.PartComponent=\"Zorel_PhysicalEthernetAdapter.DeviceID='{1}'\"",
                                L"Zorel_PhysicalEthernetAdapter.DeviceID='{1}'"}) {
        Path path;
        ASSERT_EQ(path.Parse(text), 0) << text;
        EXPECT_EQ(Helper::GetAdapterIdFromMemberAdapterPath(&path), nullptr) << text;
    }
}

} // namespace
