// The one way in for tests of what is private in the facade.
#pragma once

#include <quillet/Quillet.h>

struct QuilletTestAccess {
    static CAdapterDynamicInfo::DuplexMode GetDuplex(bool bFullDuplex) {
        return CQuillet::GetDuplex(bFullDuplex);
    }
    static CAdapterDynamicInfo::LinkSpeed GetLinkSpeed(LONG lSpeed) { return CQuillet::GetLinkSpeed(lSpeed); }
    static CAdapterDynamicInfo::LinkSecStatus GetLinkSecStatus(LONG lStatus) {
        return CQuillet::GetLinkSecStatus(lStatus);
    }
    static CDataCenter::DCBStatus GetDCBStatus(LONG lStatus) { return CQuillet::GetDCBStatus(lStatus); }
};
