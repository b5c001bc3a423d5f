// What the calls that hand an image to a boot agent have in common: the forms in which image and image types
// travel, and the return code.
#pragma once

#include "ProviderMethod.h"
#include "Trace.h"

#include <quillet/Quillet.h>

namespace FlashImage {

/// What was traced before the signature of "ProgramFlash". Its successors keep the line.
inline constexpr const wchar_t* SIGNATURE_NOTE = L"Get input params for the method called ProgramFlash()";
/// How traces of these calls begin when an in-parameter cannot be put.
inline constexpr const wchar_t* PUT_STEP = L"pIWbemClassObject_InParams -> Put, ";
inline constexpr const wchar_t* NO_ANSWER = L"(pIWbemClassObject_OutParams -> NULL)";

/// Refuses (E_FAIL) what cannot be an image for a boot agent; traces either way.
HRESULT CheckArguments(const std::wstring& bootAgentId, LONG size, const unsigned char* data);

/// VT_ARRAY | VT_UI1 from 0: the bytes of an image.
HRESULT MakeBytes(LONG size, const unsigned char* data, _variant_t& bytes);

/// VT_ARRAY | VT_BSTR from 0: the captions of the settings in their order; a null BSTR for an empty one.
HRESULT MakeTypes(const CSettings& imageTypes, _variant_t& types);

/// Reads "FlashRetCode"; a value of another type than VT_I4 leaves the code as it is.
/// @param[out] unreadable if asked for: whether the code says that the image could not be read.
HRESULT ReadReturnCode(PropertyReader& read, int& returnCode, bool* unreadable = nullptr);

} // namespace FlashImage
