// A machine that answers, written down as a machine file.
#pragma once

#include "recording/ProviderNamespace.h"

#include <quillet-simulator/Machine.h>

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace quilletctl {

/// A class of which not everything was recorded.
struct Unrecorded {
    std::wstring className;
    HRESULT code = S_OK;   ///< with which the provider refused; 0: it did not
    std::size_t count = 0; ///< how many instances cannot be stored, or have values that cannot
    std::wstring reason{}; ///< why, of the first one
};

struct Record {
    std::string mof;                           ///< the machine file
    std::map<std::wstring, std::size_t> found; ///< how many instances of which class
    std::size_t secrets = 0;                   ///< how many values were left out as secrets
    std::vector<std::wstring> absent;          ///< classes that the provider does not have
    std::vector<Unrecorded> unrecorded;
};

/// Reads every instance of every class of the provider that the simulator's schema knows. Throws Refusal
/// where there is more than a machine file is to hold.
Record RecordMachine(ProviderNamespace& provider);

} // namespace quilletctl
