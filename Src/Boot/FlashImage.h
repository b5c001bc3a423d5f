// What the calls that hand an image to a boot agent have in common: the forms in which image and image types
// travel, the call, and the return code.
#pragma once

#include "Provider/ProviderMethod.h"

#include <quillet/Quillet.h>

namespace FlashImage {

/// What cannot be an image for a boot agent; traces when it can.
Refusal NoImage(const std::wstring& bootAgentId, LONG size, const unsigned char* data);

/// VT_ARRAY | VT_UI1 from 0: the bytes of an image.
HRESULT MakeBytes(LONG size, const unsigned char* data, _variant_t& bytes);

/// VT_ARRAY | VT_BSTR from 0: the captions of the settings in their order; a null BSTR for an empty one.
HRESULT MakeTypes(const CSettings& imageTypes, _variant_t& types);

/// A method that takes an image. Its traces keep the words of "ProgramFlash", which came before all of them.
class Method {
  public:
    Method(const ProviderSession& session, const ProviderName& method);

    Method& Put(const ProviderName& parameter, const _variant_t& value);
    /// Executes it on the boot agent; there must be an answer. @param failure the trace text of a failed one.
    PropertyReader Exec(const std::wstring& bootAgentId, const wchar_t* failure);
    bool Failed() const { return m_method.Failed(); }

  private:
    ProviderMethod m_method;
};

/// Reads "FlashRetCode"; a value of another type than VT_I4 leaves the code as it is.
/// @param[out] unreadable if asked for: whether the code says that the image could not be read.
HRESULT ReadReturnCode(PropertyReader& read, int& returnCode, bool* unreadable = nullptr);

} // namespace FlashImage
