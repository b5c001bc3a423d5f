// Passwords and keys: what overwrites them, and that no trace line, journal or output of an operation tells
// them.
#include "LinkSecurity/EveryWay.h"

#include "Records/SecretText.h"
#include "Variants/SecretVariant.h"

#include <cwchar>

namespace {

using quillet::OverwriteText;
using quillet::simulator::Scalar;
using quillet::simulator::Value;
using testing::HasSubstr;
using testing::Not;

/// Whether all that the string's buffer holds is zero.
bool IsBlank(const std::wstring& text) {
    return std::all_of(text.data(), text.data() + text.size(), [](wchar_t each) { return each == 0; });
}

/// The whole buffer of a string that was emptied. Growing within its capacity moves nothing, but it writes;
/// the characters are looked at where they lie.
bool BufferIsBlank(const wchar_t* buffer, std::size_t characters) {
    return std::all_of(buffer, buffer + characters, [](wchar_t each) { return each == 0; });
}

// --- texts -------------------------------------------------------------------------------------------------

TEST(SecretText, OverwriteText_ClearsTheWholeBufferAndKeepsIt) {
    for (const std::size_t length :
         {std::size_t{0}, std::size_t{1}, std::size_t{3}, std::size_t{7}, std::size_t{300}}) {
        std::wstring text(length, L's');
        const wchar_t* const buffer = text.data();
        const std::size_t capacity = text.capacity();
        OverwriteText(text);
        EXPECT_TRUE(text.empty());
        EXPECT_EQ(text.data(), buffer);
        EXPECT_EQ(text.capacity(), capacity);
        EXPECT_TRUE(BufferIsBlank(buffer, length));
    }
}

TEST(SecretText, OverwriteText_ClearsWhatALongerTextLeftToo) {
    std::wstring text(100, L's');
    text.resize(2);
    const wchar_t* const buffer = text.data();
    OverwriteText(text);
    text.resize(100);
    ASSERT_EQ(text.data(), buffer);
    EXPECT_TRUE(IsBlank(text));
}

TEST(SecretText, AssignSecret_CopiesAllCharacters) {
    std::wstring text = L"before";
    quillet::AssignSecret(text, L"a\0b", 3);
    EXPECT_TRUE(text == std::wstring(L"a\0b", 3));
}

// --- VARIANTs ----------------------------------------------------------------------------------------------

TEST(SecretVariantText, HoldsTheTextAsItIs) {
    const std::wstring text(L"key\0with a zero", 15);
    SecretVariant variant(text);
    ASSERT_EQ(variant.vt, VT_BSTR);
    EXPECT_EQ(SysStringLen(V_BSTR(&variant)), 15u);
    std::wstring read = L"before";
    EXPECT_TRUE(ReadVariant(variant, read));
    EXPECT_TRUE(read == text);
    SecretVariant empty{std::wstring()};
    EXPECT_TRUE(ReadVariant(empty, read));
    EXPECT_EQ(read, L"");
}

TEST(SecretVariantText, OverwriteTexts_LeavesTheLengthAndNothingElse) {
    SecretVariant variant(L"secret");
    OverwriteTexts(variant);
    ASSERT_EQ(variant.vt, VT_BSTR);
    EXPECT_EQ(SysStringLen(V_BSTR(&variant)), 6u);
    EXPECT_TRUE(BufferIsBlank(V_BSTR(&variant), 6));
}

TEST(SecretVariantText, OverwriteTexts_ReachesIntoArrays) {
    SAFEARRAYBOUND bounds[] = {{2, 0}, {2, 5}};
    SecretVariant texts;
    V_ARRAY(&texts) = SafeArrayCreate(VT_BSTR, 2, bounds);
    ASSERT_NE(V_ARRAY(&texts), nullptr);
    texts.vt = VT_ARRAY | VT_BSTR;
    for (LONG row = 0; row < 2; ++row) {
        for (LONG column = 5; column < 7; ++column) {
            LONG index[] = {row, column};
            _bstr_t text(L"secret");
            ASSERT_EQ(SafeArrayPutElement(V_ARRAY(&texts), index, static_cast<wchar_t*>(text)), S_OK);
        }
    }
    OverwriteTexts(texts);
    BSTR* elements = nullptr;
    ASSERT_EQ(SafeArrayAccessData(V_ARRAY(&texts), reinterpret_cast<void**>(&elements)), S_OK);
    for (int index = 0; index < 4; ++index) {
        EXPECT_TRUE(BufferIsBlank(elements[index], 6)) << index;
    }
    SafeArrayUnaccessData(V_ARRAY(&texts));

    SecretVariant variants;
    V_ARRAY(&variants) = SafeArrayCreateVector(VT_VARIANT, 0, 2);
    ASSERT_NE(V_ARRAY(&variants), nullptr);
    variants.vt = VT_ARRAY | VT_VARIANT;
    LONG first = 0;
    _variant_t text(L"secret");
    ASSERT_EQ(SafeArrayPutElement(V_ARRAY(&variants), &first, &text), S_OK);
    OverwriteTexts(variants);
    VARIANT* inner = nullptr;
    ASSERT_EQ(SafeArrayAccessData(V_ARRAY(&variants), reinterpret_cast<void**>(&inner)), S_OK);
    EXPECT_TRUE(BufferIsBlank(V_BSTR(&inner[0]), 6));
    EXPECT_EQ(inner[1].vt, VT_EMPTY);
    SafeArrayUnaccessData(V_ARRAY(&variants));
}

TEST(SecretVariantText, OverwriteTexts_LeavesAloneWhatIsNoText) {
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_BSTR;
    V_BSTR(&value) = nullptr;
    OverwriteTexts(value);
    value.vt = VT_ARRAY | VT_BSTR;
    V_ARRAY(&value) = nullptr;
    OverwriteTexts(value);
    _bstr_t text(L"not ours");
    BSTR shared = text;
    value.vt = VT_BSTR | VT_BYREF;
    V_BSTRREF(&value) = &shared;
    OverwriteTexts(value);
    EXPECT_STREQ(static_cast<const wchar_t*>(text), L"not ours");
    _variant_t number = _variant_t(static_cast<LONG>(5));
    OverwriteTexts(number);
    EXPECT_EQ(V_I4(&number), 5);
    SAFEARRAY* numbers = SafeArrayCreateVector(VT_I4, 0, 1);
    ASSERT_NE(numbers, nullptr);
    value.vt = VT_ARRAY | VT_I4;
    V_ARRAY(&value) = numbers;
    OverwriteTexts(value);
    VariantClear(&value);
}

TEST(SecretVariantText, ReadVariant_OfAnythingElse_IsEmpty) {
    SecretVariant number;
    number.vt = VT_I4;
    V_I4(&number) = 5;
    std::wstring read = L"before";
    EXPECT_FALSE(ReadVariant(number, read));
    EXPECT_EQ(read, L"");
    SecretVariant null;
    null.vt = VT_BSTR;
    V_BSTR(&null) = nullptr;
    read = L"before";
    EXPECT_TRUE(ReadVariant(null, read));
    EXPECT_EQ(read, L"");
}

// --- records -----------------------------------------------------------------------------------------------

/// Sets every member of a record to something of its own.
void Fill(CAdapterManualAuthInfo& info) {
    info.m_sTXSAKey = L"a key that is too long for a string without a block of its own";
    info.m_nTXAssocNum1 = 1;
    info.m_nTXAssocNum2 = 2;
    info.m_bIncludeSCIOnTX = true;
    info.m_sTXSCI = L"tx";
    info.m_sRXSAKey = L"another key that is too long for a string without a block of its own";
    info.m_nRXAssocNum1 = 3;
    info.m_nRXAssocNum2 = 4;
    info.m_sRXSCI = L"rx";
    info.m_bUseEncryption = true;
}

TEST(LinkSecurityRecords, StartEmpty) {
    const CAdapterManualAuthInfo keys;
    EXPECT_EQ(keys.m_sTXSAKey + keys.m_sTXSCI + keys.m_sRXSAKey + keys.m_sRXSCI, L"");
    EXPECT_EQ(keys.m_nTXAssocNum1 + keys.m_nTXAssocNum2 + keys.m_nRXAssocNum1 + keys.m_nRXAssocNum2, 0);
    EXPECT_FALSE(keys.m_bIncludeSCIOnTX || keys.m_bUseEncryption);
    const CAdapterAuthTypeInfo auth;
    EXPECT_EQ(auth.m_eOuterEAP, 0);
    EXPECT_EQ(auth.m_InnerEAP, 0);
    EXPECT_EQ(auth.m_eKeySecType, 0);
    EXPECT_EQ(auth.m_nTypeOfCredsChanged, 0);
    EXPECT_EQ(auth.m_bUseWindowsCreds, 0);
    EXPECT_FALSE(auth.m_bUseAutoPAC || auth.m_bMachineCred || auth.m_bRandMACAddress);
    EXPECT_EQ(auth.m_sUserName + auth.m_sPassword + auth.m_sMachineDomainName + auth.m_sPACAuthority, L"");
    const CAdapterEAPInfo eap;
    EXPECT_EQ(eap.m_eOuterEAP, 0);
    EXPECT_EQ(eap.m_InnerEAP, 0);
    EXPECT_EQ(eap.m_eKeySecType, 0);
    EXPECT_FALSE(eap.m_bRandMACAddress);
    const CAdapterPACInfo pac;
    EXPECT_EQ(pac.m_sPACPath + pac.m_sPACFilePassword, L"");
    EXPECT_FALSE(pac.m_bPACInfoChanged);
    const CAdapterPacFileInfo file;
    EXPECT_EQ(file.m_lPacType, 0);
    EXPECT_EQ(file.m_lExpiryTime, 0);
    const CAdapterManualPMKInfo pmk;
    EXPECT_EQ(pmk.m_sManualPMKKey, L"");
    EXPECT_FALSE(pmk.m_bRandMACAddress);
    const CAdapterLinksecSavedCredInfo saved;
    EXPECT_EQ(saved.m_sUserName + saved.m_sPassword + saved.m_sMachineDomainName, L"");
    EXPECT_FALSE(saved.m_bMachineCred);
}

TEST(LinkSecurityRecords, ManualAuth_AreEqualWhenAllTenMembersAre) {
    CAdapterManualAuthInfo info;
    Fill(info);
    const CAdapterManualAuthInfo copy(info);
    EXPECT_TRUE(copy == info);
    const std::function<void(CAdapterManualAuthInfo&)> changes[] = {[](auto& changed) { changed.m_sTXSAKey[0] = L'A'; },
                                                                    [](auto& changed) { changed.m_nTXAssocNum1 = 9; },
                                                                    [](auto& changed) { changed.m_nTXAssocNum2 = 9; },
                                                                    [](auto& changed) { changed.m_bIncludeSCIOnTX = false; },
                                                                    [](auto& changed) { changed.m_sTXSCI = L"TX"; },
                                                                    [](auto& changed) { changed.m_sRXSAKey[0] = L'A'; },
                                                                    [](auto& changed) { changed.m_nRXAssocNum1 = 9; },
                                                                    [](auto& changed) { changed.m_nRXAssocNum2 = 9; },
                                                                    [](auto& changed) { changed.m_sRXSCI = L"RX"; },
                                                                    [](auto& changed) { changed.m_bUseEncryption = false; }};
    for (const auto& change : changes) {
        CAdapterManualAuthInfo changed(info);
        change(changed);
        EXPECT_FALSE(changed == info);
        EXPECT_TRUE(changed != info);
        CAdapterManualAuthInfo assigned;
        assigned = changed;
        EXPECT_TRUE(assigned == changed);
    }
}

TEST(LinkSecurityRecords, CopiesHoldEveryMember) {
    CAdapterAuthTypeInfo auth;
    auth.m_eOuterEAP = CAdapterAuthTypeInfo::OuterEAP(-5);
    auth.m_InnerEAP = CAdapterAuthTypeInfo::InnerEAP(6);
    auth.m_sUserName = L"user";
    auth.m_sPassword = L"password";
    auth.m_sMachineDomainName = L"domain";
    auth.m_bUseAutoPAC = true;
    auth.m_sPACAuthority = L"authority";
    auth.m_bMachineCred = true;
    auth.m_nTypeOfCredsChanged = 7;
    auth.m_bUseWindowsCreds = 8;
    auth.m_eKeySecType = CAdapterAuthTypeInfo::KeySecType(9);
    auth.m_bRandMACAddress = true;
    CAdapterAuthTypeInfo assignedAuth;
    assignedAuth = auth;
    const CAdapterAuthTypeInfo copiedAuth(auth);
    for (const CAdapterAuthTypeInfo* each :
         {&copiedAuth, static_cast<const CAdapterAuthTypeInfo*>(&assignedAuth)}) {
        EXPECT_EQ(each->m_eOuterEAP, -5);
        EXPECT_EQ(each->m_InnerEAP, 6);
        EXPECT_EQ(each->m_sUserName + L"," + each->m_sPassword + L"," + each->m_sMachineDomainName + L"," +
                      each->m_sPACAuthority,
                  L"user,password,domain,authority");
        EXPECT_TRUE(each->m_bUseAutoPAC && each->m_bMachineCred && each->m_bRandMACAddress);
        EXPECT_EQ(each->m_nTypeOfCredsChanged, 7);
        EXPECT_EQ(each->m_bUseWindowsCreds, 8);
        EXPECT_EQ(each->m_eKeySecType, 9);
    }

    CAdapterPACInfo pac;
    pac.m_sPACPath = L"path";
    pac.m_sPACFilePassword = L"password";
    pac.m_bPACInfoChanged = true;
    CAdapterPACInfo assignedPac;
    assignedPac = pac;
    const CAdapterPACInfo copiedPac(pac);
    for (const CAdapterPACInfo* each : {&copiedPac, static_cast<const CAdapterPACInfo*>(&assignedPac)}) {
        EXPECT_EQ(each->m_sPACPath + L"," + each->m_sPACFilePassword, L"path,password");
        EXPECT_TRUE(each->m_bPACInfoChanged);
    }

    CAdapterManualPMKInfo pmk;
    pmk.m_sManualPMKKey = L"key";
    pmk.m_bRandMACAddress = true;
    CAdapterManualPMKInfo assignedPmk;
    assignedPmk = pmk;
    const CAdapterManualPMKInfo copiedPmk(pmk);
    for (const CAdapterManualPMKInfo* each :
         {&copiedPmk, static_cast<const CAdapterManualPMKInfo*>(&assignedPmk)}) {
        EXPECT_EQ(each->m_sManualPMKKey, L"key");
        EXPECT_TRUE(each->m_bRandMACAddress);
    }

    CAdapterLinksecSavedCredInfo saved;
    saved.m_sUserName = L"user";
    saved.m_sPassword = L"password";
    saved.m_bMachineCred = true;
    saved.m_sMachineDomainName = L"domain";
    CAdapterLinksecSavedCredInfo assignedSaved;
    assignedSaved = saved;
    const CAdapterLinksecSavedCredInfo copiedSaved(saved);
    for (const CAdapterLinksecSavedCredInfo* each :
         {&copiedSaved, static_cast<const CAdapterLinksecSavedCredInfo*>(&assignedSaved)}) {
        EXPECT_EQ(each->m_sUserName + L"," + each->m_sPassword + L"," + each->m_sMachineDomainName,
                  L"user,password,domain");
        EXPECT_TRUE(each->m_bMachineCred);
    }
}

TEST(LinkSecurityRecords, AssignedToThemselves_AreUnchanged) {
    CAdapterManualAuthInfo info;
    Fill(info);
    const CAdapterManualAuthInfo before(info);
    CAdapterManualAuthInfo& same = info;
    info = same;
    EXPECT_TRUE(info == before);
}

template <class Record>
void ExpectCleared(std::wstring Record::*secret) {
    Record record;
    record.*secret = std::wstring(100, L's');
    const wchar_t* const buffer = (record.*secret).data();
    record.Clear();
    EXPECT_TRUE((record.*secret).empty());
    EXPECT_TRUE(BufferIsBlank(buffer, 100));
    record.Clear();
}

TEST(LinkSecurityRecords, Clear_OverwritesEachSecretInPlace) {
    ExpectCleared(&CAdapterManualAuthInfo::m_sTXSAKey);
    ExpectCleared(&CAdapterManualAuthInfo::m_sRXSAKey);
    ExpectCleared(&CAdapterAuthTypeInfo::m_sPassword);
    ExpectCleared(&CAdapterPACInfo::m_sPACFilePassword);
    ExpectCleared(&CAdapterManualPMKInfo::m_sManualPMKKey);
    ExpectCleared(&CAdapterLinksecSavedCredInfo::m_sPassword);
}

TEST(LinkSecurityRecords, Clear_LeavesTheOtherMembers) {
    CAdapterManualAuthInfo info;
    Fill(info);
    info.Clear();
    EXPECT_EQ(info.m_sTXSCI + info.m_sRXSCI, L"txrx");
    EXPECT_EQ(info.m_nRXAssocNum2, 4);
    EXPECT_TRUE(info.m_bUseEncryption);
}

// --- operations --------------------------------------------------------------------------------------------

class OperationsKeepSecrets : public EveryWayTest {
  protected:
    /// Everything that a journal entry says, in text.
    static std::string Everything(const JournalEntry& call) {
        std::string text = Describe(call) + Narrow(call.target) + Narrow(call.method) + Narrow(call.note);
        for (const auto* values : {&call.arguments, &call.context}) {
            for (const NamedValue& named : *values) {
                if (const Scalar* scalar = named.value.AsScalar()) {
                    if (const auto* value = std::get_if<std::wstring>(scalar)) {
                        text += Narrow(*value);
                    }
                }
            }
        }
        return text;
    }
};

TEST_P(OperationsKeepSecrets, FromTraceJournalAndOutput) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    std::vector<std::string> told;
    std::size_t traced = 0;
    std::size_t called = 0;
    EveryWay([&](const std::function<HRESULT()>& run) {
        run();
        for (const std::string& line : Traced()) {
            ++traced;
            if (line.find(CANARY) != std::string::npos) {
                told.push_back("trace: " + line);
            }
        }
        for (const JournalEntry& call : Calls()) {
            ++called;
            if (Everything(call).find(CANARY) != std::string::npos) {
                told.push_back("journal: " + Everything(call));
            }
        }
    });
    const std::string out = testing::internal::GetCapturedStdout();
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_THAT(told, testing::IsEmpty());
    EXPECT_THAT(out, Not(HasSubstr(CANARY)));
    EXPECT_THAT(err, Not(HasSubstr(CANARY)));
    EXPECT_GT(traced, Ways());
    EXPECT_GT(called, Ways());
}

INSTANTIATE_TEST_SUITE_P(LinkSecurity, OperationsKeepSecrets,
                         testing::ValuesIn(LinkSecurityOperations().operations), CaseName);

TEST_P(OperationsKeepSecrets, ButTheProviderHasThem) {
    // Without this the search would prove nothing.
    Prepare();
    Outputs outputs;
    ASSERT_TRUE(SUCCEEDED(GetParam().run(quillet, outputs)));
    EXPECT_THAT(machine->Save(), HasSubstr(CANARY));
}

class SecretsTest : public ProviderTest {};

TEST_F(SecretsTest, ProvidersAnswer_ReachesTheRecordWhole) {
    UseText(LinkSecurityOperations().machine);
    Connect();
    const std::wstring adapter = LR"(Zorel_PhysicalEthernetAdapter.DeviceID="{A}")";
    CAdapterManualAuthInfo keys;
    EXPECT_EQ(Code(quillet.GetAdapterLinksecManualAuthOptions(adapter, keys)), "0x00000000");
    EXPECT_EQ(keys.m_sTXSAKey, L"CANARY of the outgoing key that is kept CANARY");
    EXPECT_EQ(keys.m_sRXSAKey, L"CANARY of the incoming key that is kept CANARY");
    CAdapterAuthTypeInfo auth;
    EXPECT_EQ(Code(quillet.GetAdapterLinksecStrictPreferredOptions(adapter, auth)), "0x00000000");
    EXPECT_EQ(auth.m_sPassword, L"CANARY of the password that is kept CANARY");
    CAdapterManualPMKInfo pmk;
    bool randomMac = false;
    EXPECT_EQ(Code(quillet.GetAdapterManualPMKOptions(adapter, pmk, randomMac)), "0x00000000");
    EXPECT_EQ(pmk.m_sManualPMKKey, L"CANARY of the master key that is kept CANARY");
    CAdapterLinksecSavedCredInfo saved;
    EXPECT_EQ(Code(quillet.GetAdapterSavedCredOptions(adapter, saved)), "0x00000000");
    EXPECT_EQ(saved.m_sPassword, L"CANARY of the saved password CANARY");
}

} // namespace
