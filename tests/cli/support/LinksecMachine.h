// An adapter with link security; each of its secrets has the word CANARY at both ends.
#pragma once

namespace quillet::tests {

inline constexpr const char* kLinksecMachine = R"(
    instance of Zorel_PhysicalEthernetAdapter {
        DeviceID = "{A}"; Name = "A"; OriginalDisplayName = "Adapter A"; AdapterStatus = 1; };
    instance of Zorel_PhysicalEthernetAdapter {
        DeviceID = "{B}"; Name = "B"; OriginalDisplayName = "Adapter B"; AdapterStatus = 1; };
    instance of Zorel_LinkSecConfiguration {
        DeviceID = "{A}"; OuterEAPType = 2; InnerEAPType = 3; bMachineCred = TRUE; LinksecCredUsername = "user";
        MachineNameDomainName = "host.domain"; LinksecCredPassword = "CANARY-password-CANARY"; WindowsCreds = 1;
        bAutoPAC = TRUE; PACPath = "authority"; KeySecType = 4; bRandMACAddress = FALSE;
        strTXSAKey = "CANARY-outgoing-CANARY"; nTXAssocNum1 = 1; nTXAssocNum2 = 2; bIncludeSCIOnTX = TRUE;
        strTXSCI = "tx"; strRXSAKey = "CANARY-incoming-CANARY"; nRXAssocNum1 = 3; nRXAssocNum2 = 4;
        strRXSCI = "rx"; bUseEncryption = TRUE; strManualPMKey = "CANARY-master-CANARY"; strUsername = "saved";
        strPassword = "CANARY-saved-CANARY"; strMachineDomainName = "saved.domain";
        strSecStats = "InPktsOK 7\nOutPktsOK 8"; };
    instance of Zorel_PACFile {
        DeviceID = "{A}"; FileName = "old.pac"; PACFileType = 2; strPACFileInfo = "info"; strPACFileAid = "aid";
        strPACFileAidInfo = "aid info"; strPACFileIid = "iid"; PACFileExpiryTime = 86400; };
    instance of Zorel_PACFile { DeviceID = ""; FileName = "new.pac"; PACFilePassword = "CANARY-file-CANARY"; };)";

} // namespace quillet::tests
