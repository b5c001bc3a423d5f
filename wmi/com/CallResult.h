// IWbemCallResult: how a semisynchronous call ended.
#pragma once

#include "com/ComObject.h"
#include "connection/Session.h"

namespace quillet::wmi {

/// The end of a call. What the call does not yield is empty.
struct CallOutcome {
    std::wstring target; ///< what the call was made on, for the journal
    HRESULT status = S_OK;
    ComOwner<IWbemClassObject> object;
    ComOwner<IWbemServices> services;
    std::optional<std::wstring> text; ///< the path of the instance that was written
};

IWbemCallResult* MakeCallResult(SessionPtr session, CallOutcome outcome);

} // namespace quillet::wmi
