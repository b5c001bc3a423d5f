// Link security: what is sent and in which order, what is read, what is traced, and what the simulated
// provider makes of it.
#include "ProviderTest.h"

#include <algorithm>

namespace {

using quillet::simulator::Value;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kMachine = R"(
    instance of Zorel_NetService { Name = "ZorelNetService"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{A}"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{B}"; };
    instance of Zorel_PhysicalEthernetAdapter { DeviceID = "{Empty}"; };
    instance of Zorel_LinkSecConfiguration { DeviceID = "{Empty}"; };
    instance of Zorel_LinkSecConfiguration {
        DeviceID = "{A}"; OuterEAPType = 2; InnerEAPType = 3; bMachineCred = TRUE; LinksecCredUsername = "user";
        MachineNameDomainName = "host.domain"; LinksecCredPassword = "password"; WindowsCreds = 7; bAutoPAC = TRUE;
        PACPath = "authority"; KeySecType = 4; bRandMACAddress = TRUE; strTXSAKey = "outgoing"; nTXAssocNum1 = 1;
        nTXAssocNum2 = -2; bIncludeSCIOnTX = TRUE; strTXSCI = "tx"; strRXSAKey = "incoming"; nRXAssocNum1 = 3;
        nRXAssocNum2 = 2147483647; strRXSCI = "rx"; bUseEncryption = TRUE; strManualPMKey = "master";
        strUsername = "saved user"; strPassword = "saved password"; strMachineDomainName = "saved.domain";
        strSecStats = "InPktsOK 7\nInPktsNotValid 1"; };
    instance of Zorel_PACFile {
        DeviceID = "{A}"; FileName = "old.pac"; PACFilePassword = "old"; PACFileType = 2; strPACFileInfo = "info";
        strPACFileAid = "aid"; strPACFileAidInfo = "aid info"; strPACFileIid = "iid"; PACFileExpiryTime = 86400; };
    instance of Zorel_PACFile { DeviceID = "{A}"; FileName = "untyped.pac"; };
    instance of Zorel_PACFile {
        DeviceID = ""; FileName = "new.pac"; PACFilePassword = "right"; PACFileType = 5; strPACFileInfo = "new"; };
    instance of Zorel_PACFile { DeviceID = ""; FileName = "open.pac"; PACFileType = 6; };)";

std::wstring Path(const wchar_t* device) {
    return LR"(\\TESTHOST\ROOT\MarloLUM2:Zorel_PhysicalEthernetAdapter.DeviceID=")" + std::wstring(device) +
           L"\"";
}

const std::wstring kA = Path(L"{A}");
const std::wstring kB = Path(L"{B}");
const std::wstring kBare = Path(L"{Empty}");

/// One out-parameter: how it is read and what is traced after it.
struct Read {
    const char* accessor; ///< "String" and so on
    const char* name;
    const char* symbol;   ///< behind "L_PARAM_ETHERNETADAPTER_LINKSEC_"
    const char* progress; ///< null: no line
};

/// One in-parameter.
struct Put {
    const char* name;
    const char* symbol; ///< behind "L_PARAM_ETHERNETADAPTER_LINKSEC_"
};

/// An operation with everything that its trace names.
struct Case {
    const char* name;
    std::function<HRESULT(CQuillet&, const std::wstring& adapter)> run;
    const char* entry;  ///< null: the usual line
    const char* exit;   ///< null: the usual line
    const char* method; ///< the provider's
    const char* symbol; ///< behind "L_METHOD_ETHERNETADAPTER_"
    std::vector<Put> puts;
    std::vector<Read> reads;
    std::vector<std::string> notes;  ///< lines between the puts
    const char* noAdapter = nullptr; ///< null: the usual line
};

std::string Symbol(const char* ending) {
    return std::string("L_PARAM_ETHERNETADAPTER_LINKSEC_") + ending;
}

CAdapterAuthTypeInfo Authentication(LONG outer, LONG inner) {
    CAdapterAuthTypeInfo info;
    info.m_eOuterEAP = CAdapterAuthTypeInfo::OuterEAP(outer);
    info.m_InnerEAP = CAdapterAuthTypeInfo::InnerEAP(inner);
    info.m_sUserName = L"new user";
    info.m_sPassword = L"new password";
    info.m_bUseAutoPAC = true;
    info.m_sPACAuthority = L"new authority";
    info.m_nTypeOfCredsChanged = 2;
    info.m_bMachineCred = true;
    info.m_bUseWindowsCreds = 9;
    info.m_eKeySecType = CAdapterAuthTypeInfo::KeySecType(5);
    info.m_bRandMACAddress = true;
    return info;
}

CAdapterManualAuthInfo Keys() {
    CAdapterManualAuthInfo info;
    info.m_sTXSAKey = L"new outgoing";
    info.m_nTXAssocNum1 = 10;
    info.m_nTXAssocNum2 = 11;
    info.m_bIncludeSCIOnTX = true;
    info.m_sTXSCI = L"new tx";
    info.m_sRXSAKey = L"new incoming";
    info.m_nRXAssocNum1 = 12;
    info.m_nRXAssocNum2 = -13;
    info.m_sRXSCI = L"new rx";
    info.m_bUseEncryption = true;
    return info;
}

const std::vector<Case>& Cases() {
    static const std::vector<Case> kCases = {
        {"GetManualAuth",
         [](CQuillet& q, const std::wstring& adapter) {
             CAdapterManualAuthInfo info;
             return q.GetAdapterLinksecManualAuthOptions(adapter, info);
         },
         "Entering CQuillet::GetAdapterLinksecManualAuthOptions",
         "Exiting CQuillet::GetAdapterLinksecManualAuthOptions",
         "GetLinksecManualCfgKeys",
         "GETLINKSECMANLCFGKEYS",
         {},
         {{"String", "strTXSAKey", "MANLCFG_TX_SAKEY", "After m_sTXSAKey"},
          {"Int", "nTXAssocNum1", "MANLCFG_TX_ASSOCNUM1", "After m_nTXAssocNum1"},
          {"Int", "nTXAssocNum2", "MANLCFG_TX_ASSOCNUM2", "After m_nTXAssocNum2"},
          {"Bool", "bIncludeSCIOnTX", "MANLCFG_INCLUDE_SCI", "After m_bIncludeSCIOnTX"},
          {"String", "strTXSCI", "MANLCFG_TX_SCI", "After m_sTXSCI"},
          {"String", "strRXSAKey", "MANLCFG_RX_SAKEY", "After m_sRXSAKey"},
          {"Int", "nRXAssocNum1", "MANLCFG_RX_ASSOCNUM1", "After m_nRXAssocNum1"},
          {"Int", "nRXAssocNum2", "MANLCFG_RX_ASSOCNUM2", "After m_nRXAssocNum2"},
          {"String", "strRXSCI", "MANLCFG_RX_SCI", "After m_sRXSCI"},
          {"Bool", "bUseEncryption", "MANLCFG_USE_EMCRYPTION", "After m_bIncludeSCIOnTX"}},
         {}},
        {"SetManualAuth",
         [](CQuillet& q, const std::wstring& adapter) {
             return q.SetAdapterLinksecManualAuthOptions(adapter, Keys(), true);
         },
         "Enter CQuillet::SetAdapterWakeOnLanOptions",
         "Exit CQuillet::SetAdapterLinksecManualAuthOptions",
         "SetLinksecManualCfgKeys",
         "SETLINKSECMANLCFGKEYS",
         {{"strTXSAKey", "MANLCFG_TX_SAKEY"},
          {"nTXAssocNum1", "MANLCFG_TX_ASSOCNUM1"},
          {"nTXAssocNum2", "MANLCFG_TX_ASSOCNUM2"},
          {"bIncludeSCIOnTX", "MANLCFG_INCLUDE_SCI"},
          {"strTXSCI", "MANLCFG_TX_SCI"},
          {"strRXSAKey", "MANLCFG_RX_SAKEY"},
          {"nRXAssocNum1", "MANLCFG_RX_ASSOCNUM1"},
          {"nRXAssocNum2", "MANLCFG_RX_ASSOCNUM2"},
          {"strRXSCI", "MANLCFG_RX_SCI"},
          {"bUseEncryption", "MANLCFG_USE_EMCRYPTION"},
          {"bDriverReload", "DRIVERRELOAD"}},
         {},
         {}},
        {"GetAuth",
         [](CQuillet& q, const std::wstring& adapter) {
             CAdapterAuthTypeInfo info;
             return q.GetAdapterLinksecStrictPreferredOptions(adapter, info);
         },
         "Entering CQuillet::GetAdapterLinksecStrictPreferredOptions",
         "Exiting CQuillet::GetAdapterLinksecStrictPreferredOptions",
         "GetLinksecParams",
         "GETLINKSECPARAMS",
         {},
         {{"Int", "OuterEAPType", "OUTEREAPTYPE", "After m_eOuterEAP"},
          {"Int", "InnerEAPType", "INNEREAPTYPE", "After m_InnerEAP"},
          {"Bool", "bMachineCred", "MACHINECRED", "After m_bMachineCred"},
          {"String", "LinksecCredUsername", "USERNAME", "After m_sUserName"},
          {"String", "MachineNameDomainName", "MACHINEDOMAINNAME", "After m_sMachineDomainName"},
          {"String", "LinksecCredPassword", "PASSWORD", "After m_sPassword"},
          {"Int", "WindowsCreds", "WINDOWSCREDS", "After m_bUseWindowsCreds"},
          {"Bool", "bAutoPAC", "AUTOPAC", "After m_bUseAutoPAC"},
          {"String", "PACPath", "PACPATH", "After m_sPACAuthority"},
          {"Int", "KeySecType", "KEYSECTYPE", "After m_eKeySecType"},
          {"Bool", "bRandMACAddress", "RANDMACADDRESS", "After m_bRandMACAddress"}},
         {}},
        {"SetAuth",
         [](CQuillet& q, const std::wstring& adapter) {
             return q.SetAdapterLinksecStrictPreferredOptions(adapter, Authentication(4, 1), false);
         },
         "Entering CQuillet::SetAdapterLinksecStrictPreferredOptions",
         "Exiting CQuillet::SetAdapterLinksecStrictPreferredOptions",
         "SetLinksecParams",
         "SETLINKSECPARAMS",
         {{"OuterEAPType", "OUTEREAPTYPE"},
          {"InnerEAPType", "INNEREAPTYPE"},
          {"LinksecCredUsername", "USERNAME"},
          {"LinksecCredPassword", "PASSWORD"},
          {"TypeOfCredsChanged", "TYPEOFCREDSCHANGED"},
          {"bMachineCred", "MACHINECRED"},
          {"WindowsCreds", "WINDOWSCREDS"},
          {"bAutoPAC", "AUTOPAC"},
          {"PACPath", "PACPATH"},
          {"bCredChanged", "CREDCHANGED"},
          {"bDriverReload", "DRIVERRELOAD"},
          {"KeySecType", "KEYSECTYPE"},
          {"bRandMACAddress", "RANDMACADDRESS"}},
         {},
         {"WindowsCreds Value is:", "m_eKeySecType = 5", "m_bRandMACAddress = 1"}},
        {"GetEapType",
         [](CQuillet& q, const std::wstring& adapter) {
             CAdapterEAPInfo info;
             return q.GetAdapterLinksecEapType(adapter, info);
         },
         "Entering CQuillet::GetAdapterLinksecEapType",
         "Exiting CQuillet::GetAdapterLinksecEapType",
         "GetLinksecParams",
         "GETLINKSECEAPTYPE",
         {},
         {{"Int", "OuterEAPType", "OUTEREAPTYPE", "After m_eOuterEAP"},
          {"Int", "InnerEAPType", "INNEREAPTYPE", "After m_InnerEAP"},
          {"Int", "KeySecType", "KEYSECTYPE", "After m_eKeySecType"},
          {"Bool", "bRandMACAddress", "RANDMACADDRESS", "After m_bRandMACAddress"}},
         {}},
        {"ImportPac",
         [](CQuillet& q, const std::wstring& adapter) {
             CAdapterPACInfo info;
             info.m_sPACPath = LR"(C:\pac\new.pac)";
             info.m_sPACFilePassword = L"right";
             info.m_bPACInfoChanged = true;
             return q.AdapterImportManualPAC(adapter, info, false);
         },
         "Entering CQuillet::AdapterImportManualPAC",
         "Exiting CQuillet::AdapterImportManualPAC",
         "ImportManualPAC",
         "IMPORTMANUALPAC",
         {{"PACPath", "PACPATH"},
          {"PACFilePassword", "PACFILEPASSWORD"},
          {"bPACInfoChanged", "PACINFOCHANGED"},
          {"bReload", "RELOAD"}},
         {},
         {}},
        {"DeletePac",
         [](CQuillet& q, const std::wstring& adapter) { return q.DeletePacFile(adapter, L"old.pac"); },
         "Entering CQuillet::DeletePacFile",
         "Exiting CQuillet::DeletePacFile",
         "DeletePacFile",
         "DELETEPACFILE",
         {{"strPACFileDelete", "PACFILEDELETE"}},
         {},
         {}},
        {"GetPac",
         [](CQuillet& q, const std::wstring& adapter) {
             CAdapterPacFileInfo info;
             info.m_sPACFileName = L"old.pac";
             return q.GetAdapterPacFileContents(adapter, info);
         },
         "Entering CQuillet::GetAdapterPacFileContents",
         "Exiting CQuillet::GetAdapterPacFileContents",
         "GetPACFileContents",
         "GETPACFILECONTENTS",
         {{"strPACFile", "PACFILE"}},
         {{"Long", "PACFileType", "PACFILETYPE", "After m_lPacType"},
          {"String", "strPACFileInfo", "PACFILEINFO", "After m_sinfo"},
          {"String", "strPACFileAid", "PACFILEAID", "After m_saId"},
          {"String", "strPACFileAidInfo", "PACFILEAIDINFO", "After m_saIdInfo"},
          {"String", "strPACFileIid", "PACFILEIID", "After m_sIId"},
          {"Long", "PACFileExpiryTime", "PACFILEEXPIRYTIME", "After m_lExpiryTime"}},
         {},
         "((wsAdapterID.empty()) || (NULL != rAdapter.m_pAdapterCapabilities))"},
        {"SetPmk",
         [](CQuillet& q, const std::wstring& adapter) {
             CAdapterManualPMKInfo info;
             info.m_sManualPMKKey = L"new master";
             return q.SetAdapterManualPMKOptions(adapter, info, true, true);
         },
         "Entering CQuillet::SetAdapterManualPMKOptions",
         "Exiting CQuillet::SetAdapterManualPMKOptions",
         "SetLinksecManualPMKeys",
         "SETLINKSECMANUALPMK",
         {{"strManualPMKey", "MANUALPMKEY"},
          {"bDriverReload", "DRIVERRELOAD"},
          {"bRandMACAddress", "RANDMACADDRESS"}},
         {},
         {"m_bRandMACAddress = 0"}},
        {"GetPmk",
         [](CQuillet& q, const std::wstring& adapter) {
             CAdapterManualPMKInfo info;
             bool randomMac = false;
             return q.GetAdapterManualPMKOptions(adapter, info, randomMac);
         },
         "Entering CQuillet::GetAdapterManualPMKOptions",
         "Exiting CQuillet::GetAdapterManualPMKOptions",
         "GetLinksecManualPMKeys",
         "GETLINKSECMANUALPMK",
         {},
         {{"String", "strManualPMKey", "MANUALPMKEY", "After m_sManualPMKKey"},
          {"Bool", "bRandMACAddress", "RANDMACADDRESS", nullptr}},
         {}},
        {"GetSavedCreds",
         [](CQuillet& q, const std::wstring& adapter) {
             CAdapterLinksecSavedCredInfo info;
             return q.GetAdapterSavedCredOptions(adapter, info);
         },
         "Entering CQuillet::GetAdapterSavedCredOptions",
         "Exiting CQuillet::GetAdapterSavedCredOptions",
         "GetLinksecSavedCreds",
         "GETLINKSECSAVEDCREDS",
         {},
         {{"Bool", "bMachineCred", "MACHINECRED", "After m_bMachineCred"},
          {"String", "strUsername", "SAVED_USERNAME", "After m_sUserName"},
          {"String", "strPassword", "SAVED_PASSWORD", "After m_sPassword"},
          {"String", "strMachineDomainName", "SAVED_MACHINEDOMAINNAME", "After m_sMachineDomainName"}},
         {}},
        {"GetStats",
         [](CQuillet& q, const std::wstring& adapter) {
             std::wstring log;
             return q.GetAdapterLinksecSecurityStats(adapter, log);
         },
         "Entering CQuillet::GetAdapterLinksecSecurityStats",
         "Exiting CQuillet::GetAdapterLinksecSecurityStats",
         "GetLinksecSecurityStatsLog",
         "GETLINKSECSECSTATSLOG",
         {},
         {{"String", "strSecStats", "SECSTATS", "After wsSecLog"}},
         {}},
    };
    return kCases;
}

void PrintTo(const Case& each, std::ostream* out) {
    *out << each.name;
}

class LinkSecurityTest : public ProviderTest {
  protected:
    LinkSecurityTest() : ProviderTest(kMachine) {}
    void SetUp() override { Connect(); }

    /// The in-parameters of the method calls so far, in the order of their puts, with values and types.
    std::vector<std::string> Puts() {
        std::vector<std::string> puts;
        for (const JournalEntry& call : CallsOf(Operation::ExecMethod)) {
            for (const NamedValue& argument : call.arguments) {
                puts.push_back(Narrow(argument.name) + "=" + Text(argument.value) + " " +
                               TypeName(argument.vt));
            }
        }
        return puts;
    }
    std::vector<std::string> Names() {
        std::vector<std::string> names;
        for (const JournalEntry& call : CallsOf(Operation::ExecMethod)) {
            for (const NamedValue& argument : call.arguments) {
                names.push_back(Narrow(argument.name));
            }
        }
        return names;
    }
    /// A property of an adapter's configuration.
    std::string Kept(const wchar_t* device, const wchar_t* property) {
        const auto found = machine->Store().FindInstance(L"Zorel_LinkSecConfiguration.DeviceID=\"" +
                                                         std::wstring(device) + L"\"");
        const Value* value = found ? found->Find(property) : nullptr;
        return value ? Text(*value) : "no such value";
    }
    bool HasPac(const std::wstring& device, const std::wstring& file) {
        return machine->Store().FindInstance(L"Zorel_PACFile.DeviceID=\"" + device + L"\",FileName=\"" +
                                             file + L"\"") != nullptr;
    }

    static std::string Text(const Value& value) {
        const auto* scalar = value.AsScalar();
        if (!scalar) {
            return "null";
        }
        if (const auto* text = std::get_if<std::wstring>(scalar)) {
            return Narrow(*text);
        }
        if (const auto* flag = std::get_if<bool>(scalar)) {
            return *flag ? "true" : "false";
        }
        const auto* number = std::get_if<std::int64_t>(scalar);
        return number ? std::to_string(*number) : "something else";
    }
    static std::string TypeName(VARTYPE type) {
        switch (type) {
        case VT_BSTR:
            return "VT_BSTR";
        case VT_I4:
            return "VT_I4";
        case VT_BOOL:
            return "VT_BOOL";
        default:
            return "type " + std::to_string(type);
        }
    }
};

// --- every operation ---------------------------------------------------------------------------------------

class EveryLinkSecurityOperationTest : public LinkSecurityTest, public testing::WithParamInterface<Case> {
  protected:
    HRESULT Run(const std::wstring& adapter = kA) { return GetParam().run(quillet, adapter); }

    /// What a run traces that goes well until an out-parameter is read. With `failing` set the run ends at
    /// that parameter.
    std::vector<std::string> ExpectedTrace(const std::string& failing = {}, bool isNull = false) const {
        const Case& each = GetParam();
        std::vector<std::string> lines{each.entry, "dwErrorCode: %l"};
        lines.insert(lines.end(), each.notes.begin(), each.notes.end());
        for (const Read& read : each.reads) {
            const bool isIt = failing == read.name;
            if (std::string(read.accessor) == "Long" && (!isIt || isNull)) {
                lines.push_back("pInstance->Get() passed");
                if (isIt) {
                    lines.push_back("variant is empty or null");
                }
            }
            if (isIt && (!isNull || std::string(read.accessor) == "String")) {
                lines.push_back(std::string("GetPropertyAs") + read.accessor + " -> pAdapter_OutParams, " +
                                Symbol(read.symbol) + (isNull ? " -> NULL" : ""));
            }
            if (isIt && !isNull) {
                break;
            }
            if (read.progress) {
                lines.push_back(read.progress);
            }
        }
        lines.push_back(each.exit);
        return lines;
    }
};

TEST_P(EveryLinkSecurityOperationTest, TracesItsStepsAndSendsTheMethodToTheAdapter) {
    const Case& each = GetParam();
    EXPECT_EQ(Code(Run()), "0x00000000");
    EXPECT_THAT(Traced(), ElementsAreArray(ExpectedTrace()));
    std::vector<std::string> names;
    for (const Put& put : each.puts) {
        names.push_back(put.name);
    }
    EXPECT_THAT(Names(), ElementsAreArray(names));
    // A method that takes nothing needs no class object: it is one call and no more.
    const std::vector<JournalEntry> calls = Calls();
    ASSERT_EQ(calls.size(), each.puts.empty() ? 1u : 2u);
    if (!each.puts.empty()) {
        EXPECT_EQ(Describe(calls.front()),
                  "GetObject Zorel_PhysicalEthernetAdapter -> 0x00000000 {ClientSetId=0}");
    }
    EXPECT_EQ(calls.back().operation, Operation::ExecMethod);
    EXPECT_EQ(calls.back().target, kA);
    EXPECT_EQ(Narrow(calls.back().method), each.method);
    EXPECT_EQ(calls.back().flags, 0);
    EXPECT_TRUE(calls.back().hasContext);
}

TEST_P(EveryLinkSecurityOperationTest, WithoutAnAdapter_FailsBeforeAnythingIsSent) {
    const Case& each = GetParam();
    EXPECT_EQ(Code(Run(L"")), "0x80004005");
    EXPECT_THAT(Traced(), ElementsAre(each.entry, each.noAdapter ? each.noAdapter : "(wsAdapterID.empty())",
                                      each.exit));
    EXPECT_THAT(Called(), IsEmpty());
}

TEST_P(EveryLinkSecurityOperationTest, WithoutAConnection_Fails) {
    quillet.UninitQuillet();
    Traced();
    EXPECT_EQ(Code(Run()), "0x80041001");
    const std::vector<std::string> trace = Traced();
    EXPECT_THAT(trace, Contains("((pIWbemService == NULL) || (pIWbemContext == NULL))"));
    EXPECT_EQ(trace.front(), GetParam().entry);
    EXPECT_EQ(trace.back(), GetParam().exit);
}

TEST_P(EveryLinkSecurityOperationTest, EachProviderCallFailing_ReturnsItsCode) {
    FailEachProviderCall([this] { return Run(); });
}

TEST_P(EveryLinkSecurityOperationTest, MethodFailing_IsNamed) {
    Fail(Operation::ExecMethod, WBEM_E_PROVIDER_FAILURE);
    EXPECT_EQ(Code(Run()), "0x80041004");
    const std::vector<std::string> trace = Traced();
    ASSERT_GE(trace.size(), 2u);
    EXPECT_EQ(trace[trace.size() - 2],
              std::string("ExecMethod -> bstrObjectPath, L_METHOD_ETHERNETADAPTER_") + GetParam().symbol);
}

TEST_P(EveryLinkSecurityOperationTest, ClassAndSignatureFailing_AreNamed) {
    const Case& each = GetParam();
    Fail(Operation::GetObject, WBEM_E_ACCESS_DENIED);
    if (each.puts.empty()) {
        EXPECT_EQ(Code(Run()), "0x00000000") << "it asks for neither";
        return;
    }
    EXPECT_EQ(Code(Run()), "0x80041003");
    EXPECT_THAT(Traced(), ElementsAre(each.entry, "dwErrorCode: %l",
                                      "GetObject -> L_CLASS_ZOREL_ETHERNETADAPTER", each.exit));
    machine->Rules().Clear();

    Spoil(Operation::GetObject, Effect::NullObject);
    EXPECT_EQ(Code(Run()), "0x80041001");
    EXPECT_THAT(Traced(), ElementsAre(each.entry, "dwErrorCode: %l",
                                      "GetObject -> L_CLASS_ZOREL_ETHERNETADAPTER -> NULL", each.exit));
    machine->Rules().Clear();

    Fail(Operation::GetMethod, WBEM_E_NOT_FOUND);
    EXPECT_EQ(Code(Run()), "0x80041002");
    EXPECT_THAT(Traced(),
                ElementsAre(each.entry, "dwErrorCode: %l",
                            std::string("GetMethod -> L_METHOD_ETHERNETADAPTER_") + each.symbol, each.exit));
    EXPECT_TRUE(CallsOf(Operation::ExecMethod).empty());
}

TEST_P(EveryLinkSecurityOperationTest, EachPutFailing_IsNamedAndEndsTheOperation) {
    const Case& each = GetParam();
    for (const Put& put : each.puts) {
        SCOPED_TRACE(put.name);
        Fail(Operation::Put, WBEM_E_TYPE_MISMATCH,
             std::wstring(put.name, put.name + strlen(put.name)).c_str());
        EXPECT_EQ(Code(Run()), "0x80041005");
        machine->Rules().Clear();
        const std::vector<std::string> trace = Traced();
        ASSERT_GE(trace.size(), 2u);
        EXPECT_EQ(trace[trace.size() - 2], "Put -> " + Symbol(put.symbol));
        EXPECT_EQ(trace.back(), each.exit);
        EXPECT_TRUE(CallsOf(Operation::ExecMethod).empty());
    }
}

TEST_P(EveryLinkSecurityOperationTest, EachReadFailing_IsNamedAndEndsTheOperation) {
    for (const Read& read : GetParam().reads) {
        SCOPED_TRACE(read.name);
        Fail(Operation::Get, WBEM_E_ACCESS_DENIED,
             std::wstring(read.name, read.name + strlen(read.name)).c_str());
        EXPECT_EQ(Code(Run()), "0x80041003");
        machine->Rules().Clear();
        EXPECT_THAT(Traced(), ElementsAreArray(ExpectedTrace(read.name)));
    }
}

TEST_P(EveryLinkSecurityOperationTest, EachReadNull_IsNotedForTextsAndIsNoFailure) {
    for (const Read& read : GetParam().reads) {
        SCOPED_TRACE(read.name);
        Spoil(Operation::Get, Effect::NullValue,
              std::wstring(read.name, read.name + strlen(read.name)).c_str());
        EXPECT_EQ(Code(Run()), "0x00000000");
        machine->Rules().Clear();
        EXPECT_THAT(Traced(), ElementsAreArray(ExpectedTrace(read.name, true)));
    }
}

TEST_P(EveryLinkSecurityOperationTest, OutParametersMissing_IsTheFailureOfTheFirstRead) {
    const Case& each = GetParam();
    Spoil(Operation::ExecMethod, Effect::NoOutParameters);
    const HRESULT result = Run();
    if (each.reads.empty()) {
        EXPECT_EQ(Code(result), "0x00000000") << "what is not read is not missed";
        return;
    }
    EXPECT_EQ(Code(result), "0x80004005");
    EXPECT_THAT(Traced(), Contains(std::string("GetPropertyAs") + each.reads.front().accessor +
                                   " -> pAdapter_OutParams, " + Symbol(each.reads.front().symbol)));
}

TEST_P(EveryLinkSecurityOperationTest, ReturnValue_IsNeverRead) {
    RecordLocalCalls();
    EXPECT_EQ(Code(Run()), "0x00000000");
    std::vector<std::string> read;
    for (const JournalEntry& call : CallsOf(Operation::Get)) {
        read.push_back(Narrow(call.target));
    }
    std::vector<std::string> expected;
    for (const Read& each : GetParam().reads) {
        expected.push_back(each.name);
    }
    EXPECT_THAT(read, ElementsAreArray(expected));
}

TEST_P(EveryLinkSecurityOperationTest, AdapterWithoutLinkSecurity_IsTheProvidersRefusal) {
    const HRESULT result = Run(kB);
    EXPECT_TRUE(result == static_cast<HRESULT>(WBEM_E_NOT_SUPPORTED) ||
                result == static_cast<HRESULT>(WBEM_E_NOT_FOUND))
        << Code(result);
}

std::string NameOf(const testing::TestParamInfo<Case>& each) {
    return each.param.name;
}

INSTANTIATE_TEST_SUITE_P(LinkSecurity, EveryLinkSecurityOperationTest, testing::ValuesIn(Cases()), NameOf);

// --- manual keys -------------------------------------------------------------------------------------------

TEST_F(LinkSecurityTest, ManualAuth_ReadsAllTenMembers) {
    CAdapterManualAuthInfo info;
    ASSERT_EQ(Code(quillet.GetAdapterLinksecManualAuthOptions(kA, info)), "0x00000000");
    EXPECT_EQ(info.m_sTXSAKey, L"outgoing");
    EXPECT_EQ(info.m_nTXAssocNum1, 1);
    EXPECT_EQ(info.m_nTXAssocNum2, -2);
    EXPECT_TRUE(info.m_bIncludeSCIOnTX);
    EXPECT_EQ(info.m_sTXSCI, L"tx");
    EXPECT_EQ(info.m_sRXSAKey, L"incoming");
    EXPECT_EQ(info.m_nRXAssocNum1, 3);
    EXPECT_EQ(info.m_nRXAssocNum2, 2147483647);
    EXPECT_EQ(info.m_sRXSCI, L"rx");
    EXPECT_TRUE(info.m_bUseEncryption);
}

TEST_F(LinkSecurityTest, ManualAuth_NullTexts_LeaveNothingOfWhatTheRecordHeld) {
    CAdapterManualAuthInfo info = Keys();
    ASSERT_EQ(Code(quillet.GetAdapterLinksecManualAuthOptions(kBare, info)), "0x00000000");
    EXPECT_EQ(info.m_sTXSAKey + info.m_sTXSCI + info.m_sRXSAKey + info.m_sRXSCI, L"");
    EXPECT_EQ(info.m_nTXAssocNum1, 10);
    EXPECT_EQ(info.m_nRXAssocNum2, -13);
    EXPECT_TRUE(info.m_bUseEncryption);
}

TEST_F(LinkSecurityTest, ManualAuth_FailedRead_LeavesTheRestAsItWas) {
    CAdapterManualAuthInfo info = Keys();
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"strTXSCI");
    ASSERT_EQ(Code(quillet.GetAdapterLinksecManualAuthOptions(kA, info)), "0x80041003");
    EXPECT_EQ(info.m_sTXSAKey, L"outgoing");
    EXPECT_EQ(info.m_sTXSCI, L"new tx");
    EXPECT_EQ(info.m_sRXSAKey, L"new incoming");
}

TEST_F(LinkSecurityTest, SetManualAuth_PutsTheTenMembersAndTheReloadInOrder) {
    ASSERT_EQ(Code(quillet.SetAdapterLinksecManualAuthOptions(kA, Keys(), true)), "0x00000000");
    EXPECT_THAT(Puts(),
                ElementsAre("strTXSAKey=*** VT_BSTR", "nTXAssocNum1=10 VT_I4", "nTXAssocNum2=11 VT_I4",
                            "bIncludeSCIOnTX=true VT_BOOL", "strTXSCI=new tx VT_BSTR",
                            "strRXSAKey=*** VT_BSTR", "nRXAssocNum1=12 VT_I4", "nRXAssocNum2=-13 VT_I4",
                            "strRXSCI=new rx VT_BSTR", "bUseEncryption=true VT_BOOL",
                            "bDriverReload=true VT_BOOL"));
    CAdapterManualAuthInfo read;
    ASSERT_EQ(Code(quillet.GetAdapterLinksecManualAuthOptions(kA, read)), "0x00000000");
    EXPECT_TRUE(read == Keys());
}

TEST_F(LinkSecurityTest, SetManualAuth_DefaultsAreSentAsTheyAre) {
    ASSERT_EQ(Code(quillet.SetAdapterLinksecManualAuthOptions(kA, CAdapterManualAuthInfo(), false)),
              "0x00000000");
    EXPECT_THAT(Puts(),
                ElementsAre("strTXSAKey=*** VT_BSTR", "nTXAssocNum1=0 VT_I4", "nTXAssocNum2=0 VT_I4",
                            "bIncludeSCIOnTX=false VT_BOOL", "strTXSCI= VT_BSTR", "strRXSAKey=*** VT_BSTR",
                            "nRXAssocNum1=0 VT_I4", "nRXAssocNum2=0 VT_I4", "strRXSCI= VT_BSTR",
                            "bUseEncryption=false VT_BOOL", "bDriverReload=false VT_BOOL"));
    EXPECT_EQ(Kept(L"{A}", L"strTXSAKey"), "");
}

TEST_F(LinkSecurityTest, SetManualAuth_KeysPassUnchangedWhateverTheyHold) {
    CAdapterManualAuthInfo info;
    info.m_sTXSAKey = std::wstring(L"a\0b%s\n\x4E1C", 7);
    info.m_sRXSAKey = std::wstring(20000, L'k');
    ASSERT_EQ(Code(quillet.SetAdapterLinksecManualAuthOptions(kA, info, true)), "0x00000000");
    CAdapterManualAuthInfo read;
    ASSERT_EQ(Code(quillet.GetAdapterLinksecManualAuthOptions(kA, read)), "0x00000000");
    EXPECT_TRUE(read.m_sTXSAKey == info.m_sTXSAKey);
    EXPECT_TRUE(read.m_sRXSAKey == info.m_sRXSAKey);
}

// --- authentication ----------------------------------------------------------------------------------------

TEST_F(LinkSecurityTest, Auth_ReadsAllMembersButTheOneThatIsOnlyWritten) {
    CAdapterAuthTypeInfo info;
    info.m_nTypeOfCredsChanged = 17;
    ASSERT_EQ(Code(quillet.GetAdapterLinksecStrictPreferredOptions(kA, info)), "0x00000000");
    EXPECT_EQ(info.m_eOuterEAP, 2);
    EXPECT_EQ(info.m_InnerEAP, 3);
    EXPECT_TRUE(info.m_bMachineCred);
    EXPECT_EQ(info.m_sUserName, L"user");
    EXPECT_EQ(info.m_sMachineDomainName, L"host.domain");
    EXPECT_EQ(info.m_sPassword, L"password");
    EXPECT_EQ(info.m_bUseWindowsCreds, 7);
    EXPECT_TRUE(info.m_bUseAutoPAC);
    EXPECT_EQ(info.m_sPACAuthority, L"authority");
    EXPECT_EQ(info.m_eKeySecType, 4);
    EXPECT_TRUE(info.m_bRandMACAddress);
    EXPECT_EQ(info.m_nTypeOfCredsChanged, 17);
}

TEST_F(LinkSecurityTest, EapType_ReadsFourMembersAndNoCredentials) {
    CAdapterEAPInfo info;
    ASSERT_EQ(Code(quillet.GetAdapterLinksecEapType(kA, info)), "0x00000000");
    EXPECT_EQ(info.m_eOuterEAP, 2);
    EXPECT_EQ(info.m_InnerEAP, 3);
    EXPECT_EQ(info.m_eKeySecType, 4);
    EXPECT_TRUE(info.m_bRandMACAddress);
    CAdapterEAPInfo assigned;
    assigned = info;
    EXPECT_EQ(assigned.m_eKeySecType, 4);
}

struct Methods {
    LONG outer;
    LONG inner;
};

void PrintTo(const Methods& methods, std::ostream* out) {
    *out << "outer " << methods.outer << ", inner " << methods.inner;
}

class SentAuthenticationTest : public LinkSecurityTest, public testing::WithParamInterface<Methods> {};

TEST_P(SentAuthenticationTest, DependsOnBothMethods) {
    const auto [outer, inner] = GetParam();
    const HRESULT result =
        quillet.SetAdapterLinksecStrictPreferredOptions(kA, Authentication(outer, inner), true);
    const std::vector<std::string> trace = Traced();
    const auto innerNoted = std::count(trace.begin(), trace.end(), "m_InnerEAP out of range");
    if (outer < 1 || outer > 4) {
        EXPECT_EQ(Code(result), "0x80004005");
        EXPECT_THAT(trace, ElementsAre("Entering CQuillet::SetAdapterLinksecStrictPreferredOptions",
                                       "dwErrorCode: %l", "m_eOuterEAP out of range",
                                       "Exiting CQuillet::SetAdapterLinksecStrictPreferredOptions"));
        EXPECT_THAT(Called(),
                    ElementsAre("GetObject Zorel_PhysicalEthernetAdapter -> 0x00000000 {ClientSetId=0}"));
        EXPECT_EQ(Kept(L"{A}", L"OuterEAPType"), "2");
        return;
    }
    EXPECT_EQ(Code(result), "0x00000000");
    std::vector<std::string> expected{"OuterEAPType=" + std::to_string(outer) + " VT_I4"};
    const auto send = [&expected](std::initializer_list<const char*> more) {
        expected.insert(expected.end(), more.begin(), more.end());
    };
    switch (outer) {
    case 1:
        break;
    case 4:
        if (inner != 0) {
            expected.push_back("InnerEAPType=" + std::to_string(inner) + " VT_I4");
        }
        send({"LinksecCredUsername=new user VT_BSTR", "LinksecCredPassword=*** VT_BSTR",
              "TypeOfCredsChanged=2 VT_I4", "bMachineCred=true VT_BOOL", "WindowsCreds=9 VT_I4",
              "bAutoPAC=true VT_BOOL", "PACPath=new authority VT_BSTR"});
        break;
    default:
        if (inner != 0) {
            expected.push_back("InnerEAPType=" + std::to_string(inner) + " VT_I4");
        }
        send({"LinksecCredUsername=new user VT_BSTR", "LinksecCredPassword=*** VT_BSTR",
              "TypeOfCredsChanged=2 VT_I4", "bMachineCred=true VT_BOOL", "WindowsCreds=9 VT_I4"});
    }
    send({"bCredChanged=true VT_BOOL", "bDriverReload=true VT_BOOL", "KeySecType=5 VT_I4",
          "bRandMACAddress=true VT_BOOL"});
    EXPECT_THAT(Puts(), ElementsAreArray(expected));
    EXPECT_EQ(innerNoted, outer != 1 && (inner < 1 || inner > 3) ? 1 : 0);
    EXPECT_EQ(Kept(L"{A}", L"InnerEAPType"), outer == 1 || inner == 0 ? "3" : std::to_string(inner));
}

std::vector<Methods> AllMethods() {
    std::vector<Methods> all;
    for (LONG outer = 0; outer <= 5; ++outer) {
        for (LONG inner = 0; inner <= 7; ++inner) {
            all.push_back({outer, inner});
        }
    }
    all.push_back({-1, 1});
    all.push_back({2, -1});
    return all;
}

std::string NumberInName(LONG value) {
    return value < 0 ? "Minus" + std::to_string(-value) : std::to_string(value);
}

std::string NamesOf(const testing::TestParamInfo<Methods>& methods) {
    return "Outer" + NumberInName(methods.param.outer) + "Inner" + NumberInName(methods.param.inner);
}

INSTANTIATE_TEST_SUITE_P(LinkSecurity, SentAuthenticationTest, testing::ValuesIn(AllMethods()), NamesOf);

TEST_F(LinkSecurityTest, SetAuth_TracesItsValuesBetweenThePuts) {
    CAdapterAuthTypeInfo info = Authentication(2, 7);
    info.m_bRandMACAddress = false;
    ASSERT_EQ(Code(quillet.SetAdapterLinksecStrictPreferredOptions(kA, info, false)), "0x00000000");
    EXPECT_THAT(Traced(), ElementsAre("Entering CQuillet::SetAdapterLinksecStrictPreferredOptions",
                                      "dwErrorCode: %l", "m_InnerEAP out of range",
                                      "WindowsCreds Value is:", "m_eKeySecType = 5", "m_bRandMACAddress = 0",
                                      "Exiting CQuillet::SetAdapterLinksecStrictPreferredOptions"));
}

TEST_F(LinkSecurityTest, SetAuth_EmptyUserNameOrPassword_IsNotSentAndStays) {
    CAdapterAuthTypeInfo info = Authentication(3, 1);
    info.m_sUserName.clear();
    ASSERT_EQ(Code(quillet.SetAdapterLinksecStrictPreferredOptions(kA, info, true)), "0x00000000");
    EXPECT_THAT(Names(), Not(Contains("LinksecCredUsername")));
    EXPECT_THAT(Names(), Contains("LinksecCredPassword"));
    EXPECT_EQ(Kept(L"{A}", L"LinksecCredUsername"), "user");
    EXPECT_EQ(Kept(L"{A}", L"LinksecCredPassword"), "new password");
    Calls();

    info = Authentication(3, 1);
    info.Clear();
    ASSERT_EQ(Code(quillet.SetAdapterLinksecStrictPreferredOptions(kA, info, true)), "0x00000000");
    EXPECT_THAT(Names(), Contains("LinksecCredUsername"));
    EXPECT_THAT(Names(), Not(Contains("LinksecCredPassword")));
    EXPECT_EQ(Kept(L"{A}", L"LinksecCredPassword"), "new password");
}

TEST_F(LinkSecurityTest, SetAuth_WithPac_SendsAnEmptyAuthorityToo) {
    CAdapterAuthTypeInfo info = Authentication(4, 1);
    info.m_bUseAutoPAC = false;
    info.m_sPACAuthority.clear();
    ASSERT_EQ(Code(quillet.SetAdapterLinksecStrictPreferredOptions(kA, info, true)), "0x00000000");
    EXPECT_THAT(Puts(), Contains("bAutoPAC=false VT_BOOL"));
    EXPECT_THAT(Puts(), Contains("PACPath= VT_BSTR"));
}

TEST_F(LinkSecurityTest, SetAuth_OuterMethodOutOfRange_IsFoundOnlyBehindTheClass) {
    Fail(Operation::GetObject, WBEM_E_ACCESS_DENIED);
    EXPECT_EQ(Code(quillet.SetAdapterLinksecStrictPreferredOptions(kA, Authentication(5, 1), true)),
              "0x80041003");
    EXPECT_THAT(Traced(), Not(Contains("m_eOuterEAP out of range")));
}

// --- PAC files ---------------------------------------------------------------------------------------------

CAdapterPACInfo PacToImport(const wchar_t* path, const wchar_t* password) {
    CAdapterPACInfo info;
    info.m_sPACPath = path;
    info.m_sPACFilePassword = password;
    info.m_bPACInfoChanged = true;
    return info;
}

TEST_F(LinkSecurityTest, ImportPac_PutsFourParametersAndTheFileIsThere) {
    ASSERT_EQ(Code(quillet.AdapterImportManualPAC(kA, PacToImport(L"/media/New.pac", L"right"), true)),
              "0x00000000");
    EXPECT_THAT(Puts(), ElementsAre("PACPath=/media/New.pac VT_BSTR", "PACFilePassword=*** VT_BSTR",
                                    "bPACInfoChanged=true VT_BOOL", "bReload=true VT_BOOL"));
    CAdapterPacFileInfo contents;
    contents.m_sPACFileName = L"new.pac";
    ASSERT_EQ(Code(quillet.GetAdapterPacFileContents(kA, contents)), "0x00000000");
    EXPECT_EQ(contents.m_lPacType, 5);
    EXPECT_EQ(contents.m_sinfo, L"new");
}

TEST_F(LinkSecurityTest, ImportPac_WrongPasswordOrUnknownFile_IsRefusedByTheProvider) {
    EXPECT_EQ(Code(quillet.AdapterImportManualPAC(kA, PacToImport(L"new.pac", L"wrong"), true)),
              "0x80041003");
    EXPECT_EQ(Code(quillet.AdapterImportManualPAC(kA, PacToImport(L"new.pac", L"Right"), true)),
              "0x80041003");
    EXPECT_EQ(Code(quillet.AdapterImportManualPAC(kA, PacToImport(L"new.pac", L""), true)), "0x80041003");
    EXPECT_EQ(Code(quillet.AdapterImportManualPAC(kA, PacToImport(L"none.pac", L"right"), true)),
              "0x80041002");
    EXPECT_EQ(Code(quillet.AdapterImportManualPAC(kA, PacToImport(L"", L""), true)), "0x80041002");
    EXPECT_FALSE(HasPac(L"{A}", L"new.pac"));
    EXPECT_EQ(Code(quillet.AdapterImportManualPAC(kA, PacToImport(L"open.pac", L"any"), true)), "0x00000000");
    EXPECT_TRUE(HasPac(L"{A}", L"open.pac"));
    // What another port imported lies on the machine, too.
    EXPECT_EQ(Code(quillet.AdapterImportManualPAC(kBare, PacToImport(L"old.pac", L"old"), true)),
              "0x00000000");
    EXPECT_TRUE(HasPac(L"{Empty}", L"old.pac"));
}

TEST_F(LinkSecurityTest, PacContents_ReadsTheFileThatTheRecordNames) {
    CAdapterPacFileInfo info;
    info.m_sPACFileName = L"old.pac";
    info.m_sReserved1 = L"kept";
    ASSERT_EQ(Code(quillet.GetAdapterPacFileContents(kA, info)), "0x00000000");
    EXPECT_THAT(Puts(), ElementsAre("strPACFile=old.pac VT_BSTR"));
    EXPECT_EQ(info.m_lPacType, 2);
    EXPECT_EQ(info.m_sinfo, L"info");
    EXPECT_EQ(info.m_saId, L"aid");
    EXPECT_EQ(info.m_saIdInfo, L"aid info");
    EXPECT_EQ(info.m_sIId, L"iid");
    EXPECT_EQ(info.m_lExpiryTime, 86400);
    EXPECT_EQ(info.m_sReserved1 + info.m_sReserved2, L"kept");
    info.m_sPACFileName = L"none.pac";
    EXPECT_EQ(Code(quillet.GetAdapterPacFileContents(kA, info)), "0x80041002");
}

TEST_F(LinkSecurityTest, PacContents_NullType_Is0AndNullTextsAreEmpty) {
    CAdapterPacFileInfo info;
    info.m_sPACFileName = L"untyped.pac";
    info.m_lPacType = 77;
    info.m_sinfo = info.m_saId = info.m_saIdInfo = info.m_sIId = L"before";
    info.m_lExpiryTime = 78;
    ASSERT_EQ(Code(quillet.GetAdapterPacFileContents(kA, info)), "0x00000000");
    EXPECT_EQ(info.m_lPacType, 0);
    EXPECT_EQ(info.m_sinfo + info.m_saId + info.m_saIdInfo + info.m_sIId, L"");
    EXPECT_EQ(info.m_lExpiryTime, 78);
}

TEST_F(LinkSecurityTest, PacContents_FailedRead_LeavesTheTypeAsItWas) {
    CAdapterPacFileInfo info;
    info.m_sPACFileName = L"old.pac";
    info.m_lPacType = 77;
    Fail(Operation::Get, WBEM_E_ACCESS_DENIED, L"PACFileType");
    EXPECT_EQ(Code(quillet.GetAdapterPacFileContents(kA, info)), "0x80041003");
    EXPECT_EQ(info.m_lPacType, 77);
}

TEST_F(LinkSecurityTest, DeletePac_RemovesTheFileOfThatAdapterAlone) {
    ASSERT_EQ(Code(quillet.DeletePacFile(kA, L"old.pac")), "0x00000000");
    EXPECT_THAT(Puts(), ElementsAre("strPACFileDelete=old.pac VT_BSTR"));
    EXPECT_FALSE(HasPac(L"{A}", L"old.pac"));
    EXPECT_TRUE(HasPac(L"{A}", L"untyped.pac"));
    EXPECT_EQ(Code(quillet.DeletePacFile(kA, L"old.pac")), "0x80041002");
    EXPECT_EQ(Code(quillet.DeletePacFile(kA, L"new.pac")), "0x80041002") << "that one is only on the disk";
}

TEST_F(LinkSecurityTest, DeletePac_EmptyName_IsTheProvidersToRefuse) {
    EXPECT_EQ(Code(quillet.DeletePacFile(kA, L"")), "0x80041002");
    EXPECT_THAT(Puts(), ElementsAre("strPACFileDelete= VT_BSTR"));
}

// --- PMK, saved credentials, statistics --------------------------------------------------------------------

TEST_F(LinkSecurityTest, SetPmk_SendsTheFirstFlagAndTheRecordsOwnOne) {
    CAdapterManualPMKInfo info;
    info.m_sManualPMKKey = L"new master";
    info.m_bRandMACAddress = true;
    for (const bool unused : {false, true}) {
        ASSERT_EQ(Code(quillet.SetAdapterManualPMKOptions(kA, info, false, unused)), "0x00000000");
        EXPECT_THAT(Puts(), ElementsAre("strManualPMKey=*** VT_BSTR", "bDriverReload=false VT_BOOL",
                                        "bRandMACAddress=true VT_BOOL"));
        EXPECT_THAT(Traced(), Contains("m_bRandMACAddress = 1"));
        Calls();
    }
    EXPECT_EQ(Kept(L"{A}", L"strManualPMKey"), "new master");
}

TEST_F(LinkSecurityTest, Pmk_ReadsTheFlagIntoTheArgumentAndNotIntoTheRecord) {
    CAdapterManualPMKInfo info;
    bool randomMac = false;
    ASSERT_EQ(Code(quillet.GetAdapterManualPMKOptions(kA, info, randomMac)), "0x00000000");
    EXPECT_EQ(info.m_sManualPMKKey, L"master");
    EXPECT_TRUE(randomMac);
    EXPECT_FALSE(info.m_bRandMACAddress);
    ASSERT_EQ(Code(quillet.GetAdapterManualPMKOptions(kBare, info, randomMac)), "0x00000000");
    EXPECT_EQ(info.m_sManualPMKKey, L"");
    EXPECT_TRUE(randomMac) << "a flag without a value stays as it is";
}

TEST_F(LinkSecurityTest, SavedCreds_ReadsAllFour) {
    CAdapterLinksecSavedCredInfo info;
    ASSERT_EQ(Code(quillet.GetAdapterSavedCredOptions(kA, info)), "0x00000000");
    EXPECT_TRUE(info.m_bMachineCred);
    EXPECT_EQ(info.m_sUserName, L"saved user");
    EXPECT_EQ(info.m_sPassword, L"saved password");
    EXPECT_EQ(info.m_sMachineDomainName, L"saved.domain");
}

TEST_F(LinkSecurityTest, SavedCreds_NullPassword_LeavesItEmpty) {
    CAdapterLinksecSavedCredInfo info;
    info.m_sPassword = L"of another adapter";
    Spoil(Operation::Get, Effect::NullValue, L"strPassword");
    ASSERT_EQ(Code(quillet.GetAdapterSavedCredOptions(kA, info)), "0x00000000");
    EXPECT_EQ(info.m_sPassword, L"");
    EXPECT_EQ(info.m_sMachineDomainName, L"saved.domain");
}

TEST_F(LinkSecurityTest, Stats_ReadsTheWholeLogAndNullIsEmpty) {
    std::wstring log = L"before";
    ASSERT_EQ(Code(quillet.GetAdapterLinksecSecurityStats(kA, log)), "0x00000000");
    EXPECT_EQ(log, L"InPktsOK 7\nInPktsNotValid 1");
    ASSERT_EQ(Code(quillet.GetAdapterLinksecSecurityStats(kBare, log)), "0x00000000");
    EXPECT_EQ(log, L"");
    EXPECT_THAT(Traced(), Contains("GetPropertyAsString -> pAdapter_OutParams, "
                                   "L_PARAM_ETHERNETADAPTER_LINKSEC_SECSTATS -> NULL"));
}

TEST_F(LinkSecurityTest, Texts_OfAnotherTypeOrSize_AreTakenWithoutHarm) {
    CAdapterLinksecSavedCredInfo info;
    info.m_sPassword = L"of another adapter";
    for (const VARTYPE type : {VT_UNKNOWN, VT_DISPATCH, VT_R8, VT_BOOL, VT_ERROR}) {
        FaultRule rule;
        rule.operation = Operation::Get;
        rule.target = L"strPassword";
        rule.effect = Effect::WrongType;
        rule.vt = type;
        Inject(rule);
        EXPECT_EQ(Code(quillet.GetAdapterSavedCredOptions(kA, info)), "0x00000000") << type;
        EXPECT_EQ(info.m_sPassword, L"") << type;
        machine->Rules().Clear();
    }
    Spoil(Operation::Get, Effect::HugeString, L"strPassword");
    EXPECT_EQ(Code(quillet.GetAdapterSavedCredOptions(kA, info)), "0x00000000");
    EXPECT_EQ(info.m_sPassword.size(), std::size_t{1} << 20);
}

// --- the machine -------------------------------------------------------------------------------------------

TEST_F(LinkSecurityTest, Machine_KeepsTheCredentialsThatWereSet) {
    ASSERT_EQ(Code(quillet.SetAdapterLinksecStrictPreferredOptions(kA, Authentication(2, 1), true)),
              "0x00000000");
    CAdapterLinksecSavedCredInfo saved;
    ASSERT_EQ(Code(quillet.GetAdapterSavedCredOptions(kA, saved)), "0x00000000");
    EXPECT_EQ(saved.m_sUserName, L"new user");
    EXPECT_EQ(saved.m_sPassword, L"new password");
    EXPECT_EQ(saved.m_sMachineDomainName, L"saved.domain");
}

TEST_F(LinkSecurityTest, Machine_ChangeWithoutDriverReload_NeedsARestart) {
    bool followup = false;
    const auto inASet = [&](const std::function<HRESULT()>& change) {
        EXPECT_EQ(Code(quillet.BeginApply()), "0x00000000");
        EXPECT_EQ(Code(change()), "0x00000000");
        EXPECT_EQ(Code(quillet.ApplyDone(followup)), "0x00000000");
        return followup;
    };
    for (const bool reload : {true, false}) {
        EXPECT_EQ(inASet([&] { return quillet.SetAdapterLinksecManualAuthOptions(kA, Keys(), reload); }),
                  !reload);
        EXPECT_EQ(inASet([&] {
                      return quillet.SetAdapterLinksecStrictPreferredOptions(kA, Authentication(1, 0),
                                                                             reload);
                  }),
                  !reload);
        EXPECT_EQ(
            inASet([&] { return quillet.AdapterImportManualPAC(kA, PacToImport(L"open.pac", L""), reload); }),
            !reload);
        EXPECT_EQ(inASet([&] {
                      return quillet.SetAdapterManualPMKOptions(kA, CAdapterManualPMKInfo(), reload, false);
                  }),
                  !reload);
    }
    EXPECT_FALSE(inASet([&] { return quillet.DeletePacFile(kA, L"old.pac"); }));
}

TEST_F(LinkSecurityTest, Machine_Strict_RefusesChangesOutsideASet) {
    MachineOptions options = Options();
    options.strict = true;
    UseText(kMachine, options);
    Connect();
    EXPECT_EQ(Code(quillet.SetAdapterLinksecManualAuthOptions(kA, Keys(), true)), "0x80041003");
    EXPECT_EQ(Code(quillet.SetAdapterLinksecStrictPreferredOptions(kA, Authentication(1, 0), true)),
              "0x80041003");
    EXPECT_EQ(Code(quillet.AdapterImportManualPAC(kA, PacToImport(L"open.pac", L""), true)), "0x80041003");
    EXPECT_EQ(Code(quillet.DeletePacFile(kA, L"old.pac")), "0x80041003");
    EXPECT_EQ(Code(quillet.SetAdapterManualPMKOptions(kA, CAdapterManualPMKInfo(), true, false)),
              "0x80041003");
    EXPECT_TRUE(HasPac(L"{A}", L"old.pac"));
    EXPECT_EQ(Kept(L"{A}", L"strTXSAKey"), "outgoing");
    ASSERT_EQ(Code(quillet.BeginApply()), "0x00000000");
    EXPECT_EQ(Code(quillet.SetAdapterLinksecManualAuthOptions(kA, Keys(), true)), "0x00000000");
}

TEST_F(LinkSecurityTest, Machine_IsSavedWithWhatWasSet) {
    ASSERT_EQ(Code(quillet.SetAdapterLinksecManualAuthOptions(kA, Keys(), true)), "0x00000000");
    ASSERT_EQ(Code(quillet.AdapterImportManualPAC(kA, PacToImport(L"new.pac", L"right"), true)),
              "0x00000000");
    const std::string saved = machine->Save();
    quillet.UninitQuillet();
    UseText(saved);
    Connect();
    CAdapterManualAuthInfo read;
    ASSERT_EQ(Code(quillet.GetAdapterLinksecManualAuthOptions(kA, read)), "0x00000000");
    EXPECT_TRUE(read == Keys());
    EXPECT_TRUE(HasPac(L"{A}", L"new.pac"));
}

} // namespace
