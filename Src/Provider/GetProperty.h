// Fetching one property into a value of its type: what every typed getter does.
#pragma once

#include "Provider/Trace.h"
#include "Variants/VariantValue.h"

#include <wbemidl.h>

#include <string>
#include <vector>

/// The frame of every getter: what differs is the value's type, what it passes through, and what the
/// operation is called in traces.
/// @param isRead if asked for: whether there was a value of a type that could be read. Success alone does not
///               say so: a provider may have no more data, or answer in a type that is no such value.
template <typename Holder = FilledVariant, typename Value>
HRESULT GetProperty(IWbemClassObject* instance, const wchar_t* name, Value& value, bool& isNull, bool* isRead,
                    const wchar_t* missing, bool verbose = false) {
    if (isRead) {
        *isRead = false;
    }
    if (!instance) {
        TraceText(missing);
        return E_FAIL;
    }
    isNull = false;
    Holder variant;
    CIMTYPE type = CIM_EMPTY;
    const HRESULT result = instance->Get(name, 0, &variant, &type, nullptr);
    if (FAILED(result) || result == WBEM_S_NO_MORE_DATA) {
        return result;
    }
    if (verbose) {
        TraceText(L"pInstance->Get() passed");
    }
    if (HoldsNothing(variant)) {
        isNull = true;
        if (verbose) {
            TraceText(L"variant is empty or null");
        }
    } else if (const bool read = ReadVariant(variant, value); isRead) {
        *isRead = read;
    }
    return result;
}

/// As CQuillet::GetPropertyArray, but straight into the texts of a record.
HRESULT GetPropertyTexts(IWbemClassObject* instance, const wchar_t* name, std::vector<std::wstring>& values,
                         int* count);
